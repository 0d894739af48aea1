#pragma once

#include <string>

#include "AccountSdkContract.h"
#include "PlatformUrl.h"

namespace accountsdk {

// What the SDK is told. Two sources: the environment variable ZVACCOUNTSDK_PLATFORM_URL of the process, and
// ZMSCoreConfig.json beside this library. The variable is the sandbox's alone, so that a program can send the SDK to a
// platform without touching a file that other programs read; the platform's real SDK knows nothing of it.
struct SdkConfiguration {
    // "client_id" of the file: nine decimal digits. Empty when there is no file: any client may sign in then, as far as
    // the SDK is concerned; the platform has its own idea of who may.
    std::string clientId;
    // The variable, or "platform_url" of the file when that is not set or empty.
    PlatformUrl platform;
};

// Reads both. kOk, kConfigurationMissing or kConfigurationInvalid; the configuration is filled with kOk only.
Code LoadSdkConfiguration(SdkConfiguration& configuration);

}  // namespace accountsdk
