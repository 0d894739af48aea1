#include <json/value.h>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "sysconf/BasicServiceRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::ActiveUser";
constexpr char kLogHook[] = "UserAuthService::ActiveUser::<lambda_1>::operator ()";
constexpr char kErrorLogHook[] = "UserAuthService::ActiveUser::<lambda_2>::operator ()";

constexpr std::int32_t kResultSuccess = 0;
constexpr std::int32_t kUserStatusActive = 1;

}  // namespace

bool UserAuthService::ActiveUser() try {
    userauth::BasicServiceRequest request(m_lock, m_strCurrentUserID, m_strCurrentAT);
    request.url = userauth::BasicServiceUrl(L"sysConfRefresh");
    userauth::AskForSysConf(request, m_strCountryCode);  // without the lock: see UserAuthService.h
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

// Takes the activation from a document of the basic service. The document tells it when "result" is there and 0 and
// "userStatus" is an integer: 1 is an active account, any other number is not. A document that does not tell leaves the
// flag as it is, so that no failed reply takes an activation back. Returns whether it was told.
bool UserAuthService::InitActiveAccount(Json::Value& root) {
    const userauth::Reply reply = userauth::Reply::Of(root);
    if (!reply.HasInteger("result") || reply.Integer("result") != kResultSuccess || !reply.HasInteger("userStatus")) {
        return false;
    }
    m_bActiveAccount = reply.Integer("userStatus") == kUserStatusActive;
    return true;
}
