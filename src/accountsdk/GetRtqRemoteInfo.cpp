#include <utility>

#include "UserAuthService.h"
#include "request/UserAuthRequest.h"

std::string UserAuthService::GetRtqRemoteInfo(std::wstring url, std::map<std::string, std::string>& headers) try {
    userauth::UserAuthRequest request;
    request.SetGetRequest(std::move(url));
    userauth::WebRequestResult result;
    request.SendWebRequest(result, headers);
    return result.nHttpCode == userauth::kHttpOk ? result.szResponse : std::string();
} catch (...) {
    return {};
}
