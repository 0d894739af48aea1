#include "UserAuthService.h"
#include "core/AccountStateHold.h"
#include "core/DeploymentConstants.h"
#include "core/TextEncoding.h"
#include "request/ClientConstants.h"
#include "request/StandardBase64.h"

// Base64 of "6:<SDK text>:<application id>::<URL-encoded access token>"; 6 is this client's device type.
std::string UserAuthService::GetAuthorizationContents() try {
    using userauth::kAnsiCodePage;
    using userauth::WideToMultiByte;
    std::wstring accessToken;
    {
        const userauth::SharedHold hold(m_lock);
        accessToken = m_strCurrentAT;
    }
    return userauth::EncodeStandardBase64(WideToMultiByte(userauth::kDeviceType, kAnsiCodePage) + ":" +
                                          WideToMultiByte(m_strSdkDeviceId, kAnsiCodePage) + ":" +
                                          WideToMultiByte(userauth::kApplicationId, kAnsiCodePage) +
                                          "::" + WideToMultiByte(userauth::UrlEncode(accessToken), kAnsiCodePage));
} catch (...) {
    return {};
}
