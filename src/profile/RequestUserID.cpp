#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

bool UserAuthService::RequestUserID() try {
    const std::wstring url = GlobalParamWrapper::GetInstance()->GetGWUrl() + L"?access_token=" +
                             userauth::UrlEncode(GetCurrentAT()) +
                             L"&nsp_fmt=JSON&nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID";
    userauth::UserAuthRequest request;
    request.SetGetRequest(url);
    userauth::WebRequestResult result;
    request.SendWebRequest(result);

    // The URL carries the access token, and so does the line; the logger's sinks mask it.
    userauth::WriteLog(kSeveritySummary, __LINE__, "UserAuthService::RequestUserID",
                       userauth::SummaryLine("RequestUserID", url, result.nHttpCode));
    if (result.nHttpCode != userauth::kHttpOk) {
        return false;
    }
    // The gateway's id is read in the ANSI code page, the sync server's in UTF-8: kept as it is.
    const userauth::Reply reply(result.szResponse);
    SetCurrrentUserID(userauth::MultiByteToWide(reply.Text("uid"), userauth::kAnsiCodePage));
    return true;
} catch (...) {
    return false;
}
