#include <ParamStore.h>
#include <json/value.h>

#include "UserAuthService.h"
#include "core/AccountStateHold.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::UpdateRegistInfo";

userauth::JsonData Body(const std::string& countryCode, const std::wstring& traceId) {
    Json::Value body(Json::objectValue);
    body["registerCountryCode"] = countryCode;
    body["traceId"] = userauth::WideToMultiByte(traceId, userauth::kAnsiCodePage);
    return userauth::JsonData(body);
}

}  // namespace

bool UserAuthService::UpdateRegistInfo() try {
    const std::wstring traceId = GetTraceID(BaseCmd::kRegistrationPlace);
    const std::wstring url =
        GlobalParamWrapper::GetInstance()->GetPortalUrl() + L"/pcclient/getRegisterInfo?traceId=" + traceId;
    const std::string country = userauth::WideToMultiByte(GetCurrentCountryCode(), userauth::kUtf8CodePage);
    userauth::UserAuthRequest request;
    request.SetPostRequest(url, BuildHeaders(HeadType::kAccount, traceId), Body(country, traceId));
    userauth::WebRequestResult result;
    request.SendWebRequest(result);

    WriteLog(kSeverityProgress, __LINE__, kTag, L"UpdateRegistInfo httpcode:" + std::to_wstring(result.nHttpCode));
    WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("UpdateRegistInfo", url, result.nHttpCode));
    const userauth::Reply reply(result.szResponse);
    if (result.nHttpCode != userauth::kHttpOk || reply.Member("result").Text("code") != "0") {
        WriteLog(kSeverityFailure, __LINE__, kTag,
                 L"Error: UpdateRegistInfo failed, httpcode = " + std::to_wstring(result.nHttpCode));
        return false;
    }
    {
        // A member that is missing or mistyped leaves what an earlier reply said.
        const userauth::ExclusiveHold hold(m_lock);
        m_strLanguageType = reply.TextOr("languageType", m_strLanguageType);
        m_bPriviledge = reply.BooleanOr("privilege", m_bPriviledge);
        m_bClientLogReport = reply.BooleanOr("clientLogReport", m_bClientLogReport);
    }
    WriteLog(kSeverityProgress, __LINE__, kTag, L"UpdateRegistInfo successed!");
    return true;
} catch (...) {
    return false;
}

bool UserAuthService::IsChinaAccount() try { return GetCurrentCountryCode() == L"CN"; } catch (...) {
    return false;
}
