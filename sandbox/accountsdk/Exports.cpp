// The library's ten exports. Texts are UTF-8; every int is an accountsdk::Code. No exception leaves them.

#include "AccountSdk.h"

namespace {

using accountsdk::AccountSdk;

template <typename Operation>
int Guarded(Operation operation) noexcept {
    try {
        return operation(AccountSdk::Instance());
    } catch (...) {
        return accountsdk::kInternalError;
    }
}

}  // namespace

#define ACCOUNT_SDK_EXPORT extern "C" __declspec(dllexport)

ACCOUNT_SDK_EXPORT int Init() {
    return Guarded([](AccountSdk& sdk) { return sdk.Init(); });
}

ACCOUNT_SDK_EXPORT int Uninit() {
    return Guarded([](AccountSdk& sdk) { return sdk.Uninit(); });
}

// kOk: the outcome will come through the callback. Any other code: it will not.
ACCOUNT_SDK_EXPORT int SignIn(const char* applicationId, const char* scopes, const char* location) {
    return Guarded([=](AccountSdk& sdk) { return sdk.SignIn(applicationId, scopes, location); });
}

// The sandbox has no window to show: kOk when somebody is signed in.
ACCOUNT_SDK_EXPORT int OpenAccountCenter() {
    return Guarded([](AccountSdk& sdk) { return sdk.OpenAccountCenter(); });
}

// Asks the platform: kAccountChanged, or kOk when the user is still the same.
ACCOUNT_SDK_EXPORT int HasAccountChanged(const char* userId) {
    return Guarded([=](AccountSdk& sdk) { return sdk.HasAccountChanged(userId); });
}

ACCOUNT_SDK_EXPORT int RegisterNotifyFunction(accountsdk::NotifyCallback callback) {
    return Guarded([=](AccountSdk& sdk) { return sdk.RegisterNotifyFunction(callback); });
}

// Accounts are always supported: kOk.
ACCOUNT_SDK_EXPORT int IsSupportAccount() {
    return accountsdk::kOk;
}

// Base URL of the platform; never null. Valid until the next "Init" or "Uninit".
ACCOUNT_SDK_EXPORT const char* GetOAuthDomain() {
    try {
        return AccountSdk::Instance().OAuthDomain();
    } catch (...) {
        return "";
    }
}

// Asks the platform: kOk when somebody is signed in.
ACCOUNT_SDK_EXPORT int IsAccountLoggedIn() {
    return Guarded([](AccountSdk& sdk) { return sdk.IsAccountLoggedIn(); });
}

ACCOUNT_SDK_EXPORT int SetLogoutEnable(const char* entryJson) {
    return Guarded([=](AccountSdk& sdk) { return sdk.SetLogoutEnable(entryJson); });
}
