#pragma once

#include <string>

#include "AccountSdkContract.h"

namespace accountsdk {

// What ZMSCoreConfig.json, beside this library, tells the SDK. Its other members belong to others and are not looked
// at.
struct SdkConfiguration {
    std::string clientId;     // "client_id": nine decimal digits
    std::string platformUrl;  // "platform_url": http://HOST or http://HOST:PORT, nothing after it
};

// Reads the file. kOk, kConfigurationMissing or kConfigurationInvalid; the configuration is filled with kOk only.
Code LoadSdkConfiguration(SdkConfiguration& configuration);

}  // namespace accountsdk
