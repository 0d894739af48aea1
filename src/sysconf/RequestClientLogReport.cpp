#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "sysconf/BasicServiceRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::RequestClientLogReport";
constexpr char kLogHook[] = "UserAuthService::RequestClientLogReport::<lambda_1>::operator ()";

}  // namespace

bool UserAuthService::RequestClientLogReport() try {
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"getUserRegister");
    request.body = L"{\"params\": [\"clientLogReport\"]}";
    request.logHook = kLogHook;
    std::string text;
    const int code = userauth::SendBasicServiceRequest(request, text);

    // The small letter is kept as it is.
    WriteLog(kSeverityProgress, __LINE__, kTag, L"requestClientLogReport HttpCode: " + std::to_wstring(code));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("RequestClientLogReport", request.url, code));
    if (!userauth::IsBasicServiceSuccess(code)) {
        return false;
    }
    const userauth::Reply reply(text);
    // "result" is read as the JSON library converts: null, false and 0.5 count as 0. The library refuses to convert a
    // text, and to look for members in a "resultMap" that is neither an object nor null. Both are failures.
    if (!reply.Has("result") || !reply.Has("resultMap") || reply.ConvertedInteger("result") != 0 ||
        !reply.MayHaveMembers("resultMap")) {
        return false;
    }
    m_bClientLogReport = reply.Member("resultMap").ConvertedText("clientLogReport") == "true";
    return true;
} catch (...) {
    return false;
}
