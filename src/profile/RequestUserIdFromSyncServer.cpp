#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

bool UserAuthService::RequestUserIdFromSyncServer() try {
    constexpr char kTag[] = "UserAuthService::RequestUserIdFromSyncServer";
    const std::wstring url =
        GlobalParamWrapper::GetInstance()->GetSyncServerUrl() + L"/drive/v1/about?fields=user(userId)";
    userauth::UserAuthRequest request;
    request.SetGetRequest(url, {{L"Authorization", L"Bearer " + GetInstance()->GetCurrentAT()}});
    userauth::WebRequestResult result;
    request.SendWebRequest(result);

    userauth::WriteLog(kSeverityProgress, __LINE__, kTag,
                       L"RequestUserId httpcode=" + std::to_wstring(result.nHttpCode));
    userauth::WriteLog(kSeveritySummary, __LINE__, kTag, userauth::SummaryLine("RequestUserId", url, result.nHttpCode));
    if (result.nHttpCode != userauth::kHttpOk) {
        return false;
    }
    const userauth::Reply reply(result.szResponse);
    SetCurrrentUserID(userauth::MultiByteToWide(reply.Member("user").Text("userId"), userauth::kUtf8CodePage));
    return true;
} catch (...) {
    return false;
}
