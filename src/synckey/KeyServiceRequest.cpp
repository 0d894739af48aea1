#include "synckey/KeyServiceRequest.h"

#include <ParamStore.h>

#include "UserAuthService.h"
#include "core/DeploymentConstants.h"
#include "core/TextEncoding.h"

namespace userauth {

std::wstring KeyServiceUrl(const std::wstring& rest) {
    return GlobalParamWrapper::GetInstance()->GetUserInformationserviceUrl() +
           L"/KeCloudUserInformationService/v1/keys" + rest;
}

UserAuthRequest::HeaderMap KeyServiceHeaders() {
    UserAuthService& service = *UserAuthService::GetInstance();
    const std::wstring accessToken = service.GetCurrentAT();
    const std::wstring userId = service.GetCurrentUserID();
    return {
        {L"Authorization", L"Bearer " + accessToken},
        {L"unionID", userId},
        {L"userId", userId},
        {L"x-zv-app-package-name", MultiByteToWide(kPackageName, kAnsiCodePage)},
        {L"x-zv-app-id", kApplicationId},
    };
}

void SendKeyServiceRequest(const std::wstring& url, const UserAuthRequest::HeaderMap& headers,
                           WebRequestResult& result) {
    UserAuthRequest request;
    request.SetGetRequest(url);
    request.SendWebRequest(result, headers);
}

}  // namespace userauth
