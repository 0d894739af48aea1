#include "SdkConfiguration.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "JsonText.h"
#include "OwnModule.h"

namespace accountsdk {
namespace {

constexpr std::size_t kClientIdDigits = 9;

bool IsDigits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsPort(const std::string& text) {
    return IsDigits(text) && text.size() <= 5 && std::stoi(text) >= 1 && std::stoi(text) <= 65535;
}

bool IsPlatformUrl(const std::string& url) {
    static const std::string kScheme = "http://";
    if (url.compare(0, kScheme.size(), kScheme) != 0) {
        return false;
    }
    const std::string authority = url.substr(kScheme.size());
    const std::size_t colon = authority.find(':');
    const std::string host = authority.substr(0, colon);
    const bool hostOk = !host.empty() && host.find_first_of("/?#@ \t\r\n") == std::string::npos;
    return hostOk && (colon == std::string::npos || IsPort(authority.substr(colon + 1)));
}

std::string PlatformUrlOfEnvironment() {
    wchar_t value[256];
    const DWORD length = GetEnvironmentVariableW(L"ZVACCOUNTSDK_PLATFORM_URL", value, 256);
    return std::string(value, value + (length < 256 ? length : 0));
}

}  // namespace

Code LoadSdkConfiguration(SdkConfiguration& configuration) {
    const std::string given = PlatformUrlOfEnvironment();
    std::ifstream file(OwnModuleFolder() / "ZMSCoreConfig.json", std::ios::binary);
    if (!file.is_open() && given.empty()) {
        return kConfigurationMissing;
    }
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const Json::Value root = ParseObject(file.is_open() ? text : R"({"client_id":"104862915"})");
    SdkConfiguration read{TextMember(root, "client_id"), given.empty() ? TextMember(root, "platform_url") : given};
    if (read.clientId.size() != kClientIdDigits || !IsDigits(read.clientId) || !IsPlatformUrl(read.platformUrl)) {
        return kConfigurationInvalid;
    }
    configuration = std::move(read);
    return kOk;
}

}  // namespace accountsdk
