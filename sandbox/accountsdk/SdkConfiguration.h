#pragma once

#include <string>

#include "AccountSdkContract.h"
#include "PlatformUrl.h"

namespace accountsdk {

// How a sign-in is done.
enum class SignInMode {
    kAtOnce,    // the platform's current account, without a person
    kOpenPage,  // a person chooses on the platform's sign-in page, which the SDK opens in the system's browser
    kAwaitPage  // likewise, but no browser is started: a test opens the page, or a person follows the link on the
                // platform's own page
};

// What the SDK is told. Two sources: environment variables of the process, ZVACCOUNTSDK_PLATFORM_URL and
// ZVACCOUNTSDK_INTERACTIVE, and ZMSCoreConfig.json beside this library. The variables are the sandbox's alone, so that
// a program can send the SDK to a platform without touching a file that other programs read; the platform's real SDK
// knows nothing of them.
struct SdkConfiguration {
    // "client_id" of the file: nine decimal digits. Empty when there is no file: any client may sign in then, as far as
    // the SDK is concerned; the platform has its own idea of who may.
    std::string clientId;
    // The variable, or "platform_url" of the file when that is not set or empty.
    PlatformUrl platform;
    // The variable: "browser" is kOpenPage, "wait" is kAwaitPage, any other text kAtOnce. When it is not set or empty:
    // kOpenPage with "interactive": true in the file, else kAtOnce.
    SignInMode signIn = SignInMode::kAtOnce;
};

// Reads both. kOk, kConfigurationMissing or kConfigurationInvalid; the configuration is filled with kOk only.
Code LoadSdkConfiguration(SdkConfiguration& configuration);

}  // namespace accountsdk
