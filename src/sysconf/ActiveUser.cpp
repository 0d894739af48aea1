#include <json/value.h>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "request/SummaryLine.h"
#include "sysconf/SysConfRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::ActiveUser";
constexpr char kLogHook[] = "UserAuthService::ActiveUser::<lambda_1>::operator ()";
constexpr char kErrorLogHook[] = "UserAuthService::ActiveUser::<lambda_2>::operator ()";

}  // namespace

bool UserAuthService::ActiveUser() try {
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"sysConfRefresh");
    userauth::AskForSysConf(request, m_strCountryCode);  // read without the lock, by design
    request.logHook = kLogHook;
    request.errorLogHook = kErrorLogHook;
    std::string reply;
    const int code = userauth::SendBasicServiceRequest(request, reply);

    WriteLog(kSeverityProgress, __LINE__, kTag, L"ActiveUser httpcode:" + std::to_wstring(code));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("ActiveUser", request.url, code));
    Json::Value root;
    return userauth::IsBasicServiceSuccess(code) && userauth::ParseDocument(reply, root) && InitActiveAccount(root);
} catch (...) {
    return false;
}
