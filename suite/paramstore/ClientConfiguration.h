#pragma once

#include <map>
#include <optional>
#include <string>

#include "ConfigurationText.h"

namespace suite {

// The stored items of earlier client versions: item number to text.
using LegacyItemMap = std::map<int, std::wstring>;

// Deployment settings. Texts are UTF-16; folders are absolute; folders and base URLs have no trailing separator, so
// that a drive's root is "C:". Empty folders mean their defaults.
struct ClientConfiguration {
    std::wstring portalUrl;
    std::wstring gatewayUrl;
    std::wstring syncServerUrl;
    std::wstring userInformationServiceUrl;
    std::wstring basicServiceUrl;
    std::wstring countryCode;
    std::wstring clientMode = L"1";
    std::wstring appDataLocalPath;
    std::wstring stateFolder;
    LegacyItemMap legacyItems;
};

// The base configuration with the members that the text names replaced. Nothing, with the error text of
// GlobalParamWrapper::LoadConfiguration, when the text cannot be read or is wrong.
std::optional<ClientConfiguration> ReadClientConfiguration(ConfigurationText& text, ClientConfiguration base,
                                                           std::string& error);

}  // namespace suite
