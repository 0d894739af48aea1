#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "AccountSdkContract.h"
#include "SdkConfiguration.h"
#include "SignInThreads.h"

namespace accountsdk {

// The SDK of one process. Any thread. The lock is held for copies only, never while the platform or a callback works.
class AccountSdk {
public:
    static AccountSdk& Instance();

    // Reads the configuration. A second call reads it again.
    Code Init();

    // Forgets configuration and callback after the running sign-ins have ended. After an "Init" that failed it returns
    // that one's code, because there are callers that report only this code.
    Code Uninit();

    Code RegisterNotifyFunction(NotifyCallback callback);
    Code SignIn(const char* applicationId, const char* scopes, const char* location);
    Code HasAccountChanged(const char* userId);
    Code IsAccountLoggedIn();
    Code OpenAccountCenter();
    Code SetLogoutEnable(const char* entryJson);

    // The platform's base URL, empty before "Init". Valid until the next Init or Uninit.
    const char* OAuthDomain();

private:
    AccountSdk() = default;

    std::unique_ptr<const SdkConfiguration> CopyConfiguration();

    SignInThreads m_signIns;
    std::mutex m_mutex;
    std::unique_ptr<const SdkConfiguration> m_configuration;  // null: not initialised
    NotifyCallback m_callback = nullptr;
    Code m_lastInit = kNotInitialised;
};

}  // namespace accountsdk
