#pragma once

/// @file
/// The account SDK as the service loads it.

#include "UserAuthTypes.h"

/// Entry points of the account SDK, in the order in which they are resolved; null when the export is missing.
/// Texts are UTF-8.
struct AccountSdkEntryPoints {
    int (*init)() = nullptr;    ///< "Init"; 0: success
    int (*uninit)() = nullptr;  ///< "Uninit"
    /// "SignIn"; 0: the callback will come.
    int (*signIn)(const char* applicationId, const char* scopes, const char* location) = nullptr;
    int (*openAccountCenter)() = nullptr;                                 ///< "OpenAccountCenter"; 0: success
    int (*hasAccountChanged)(const char* userId) = nullptr;               ///< "HasAccountChanged"; 11: changed
    int (*registerNotifyFunction)(ZmsNotifyCallback callback) = nullptr;  ///< "RegisterNotifyFunction"; 0: success
    void (*isSupportAccount)() = nullptr;  ///< resolved and kept; never called, its signature is not known
    void (*getOAuthDomain)() = nullptr;    ///< as above
    int (*isAccountLoggedIn)() = nullptr;  ///< 0: logged in
    int (*setLogoutEnable)(const char* entryJson) = nullptr;  ///< "SetLogoutEnable"
};
