#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/AccountStateHold.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/UserAuthRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::RequestApplicationAT";

// Written on every call, after a success too: kept as it is. For want of memory the line is lost, and the result
// stands.
void LogStatus(int httpCode) try {
    WriteLog(kSeverityFailure, __LINE__, kTag, L"Get ApplyAT Failed! httpcode = " + std::to_wstring(httpCode));
} catch (...) {
    return;
}

}  // namespace

bool UserAuthService::RequestApplicationAT() try {
    const std::wstring traceId = GetTraceID(BaseCmd::kRequestAccessToken);
    GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    userauth::UserAuthRequest request;
    request.SetPostRequest(store->GetPortalUrl() + L"/pcclient/getAppAccessToken?traceId=" + traceId,
                           BuildHeaders(HeadType::kAccessToken, traceId), userauth::JsonData());
    userauth::WebRequestResult result;
    request.SendWebRequest(result);

    bool succeeded = false;
    if (result.nHttpCode == userauth::kHttpOk) {
        const userauth::Reply reply(result.szResponse);
        std::string styledCode = reply.Member("result").StyledText("code");
        // The test is inverted and always true: a styled text ends with a line feed and never equals "0". Kept as it
        // is: every 200 is a success.
        succeeded = styledCode != "0";
        store->SetAppAT(userauth::MultiByteToWide(reply.Text("accessToken"), userauth::kAnsiCodePage));
        // Nothing fails from here on: token and result belong together.
        {
            const userauth::ExclusiveHold hold(m_lock);
            m_nAppAtExpires = reply.Integer("expires");
            m_strResultCode.swap(styledCode);
        }
        WriteLog(kSeverityProgress, __LINE__, kTag, L"Get ApplyAT successed!");
    }
    LogStatus(result.nHttpCode);
    return succeeded;
} catch (...) {
    return false;
}
