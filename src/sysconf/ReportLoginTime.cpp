#include <json/value.h>
#include <json/writer.h>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/RequestLog.h"
#include "sysconf/BasicServiceRequest.h"

namespace {

using userauth::kUtf8CodePage;
using userauth::MultiByteToWide;
using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::ReportLoginTime";
constexpr char kLogHook[] = "UserAuthService::ReportLoginTime::<lambda_1>::operator ()";

// The business goes into the description as it stands, commas and colons too.
std::wstring Body(const std::string& business) {
    Json::Value record(Json::objectValue);
    record["isStored"] = "false";  // the text, not the boolean
    record["opDesc"] = "service:client,action:dataInit,bus:" + business + ",result:ok";
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return MultiByteToWide(userauth::WriteBy(builder, record), kUtf8CodePage);
}

}  // namespace

// What the server answers is not judged: a failed report is in the log only.
void UserAuthService::ReportLoginTime(std::string business) try {
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"postOpDesc");
    request.body = Body(business);
    request.logHook = kLogHook;
    std::string reply;
    const int code = userauth::SendBasicServiceRequest(request, reply);

    WriteLog(kSeverityProgress, __LINE__, kTag,
             L"ReportLoginTime httpcode:" + std::to_wstring(code) + L"  ReportLoginTime business:" +
                 MultiByteToWide(business, kUtf8CodePage));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("ReportLoginTime", request.url, code));
} catch (...) {
    return;
}
