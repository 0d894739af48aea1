#include "SdkConfiguration.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "JsonText.h"
#include "OwnModule.h"

namespace accountsdk {
namespace {

constexpr std::size_t kClientIdDigits = 9;

bool IsClientId(const std::string& text) {
    return text.size() == kClientIdDigits &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The system is asked, not the C runtime, which keeps a copy from the start of the process: programs set the variable
// while they run. Empty when it is not set.
std::string VariableOfProcess(const wchar_t* name) {
    constexpr std::size_t kLongestVariable = 32767;  // with the terminating zero
    std::wstring wide(kLongestVariable, L'\0');
    const DWORD length = GetEnvironmentVariableW(name, wide.data(), static_cast<DWORD>(wide.size()));
    wide.resize(length < wide.size() ? length : 0);
    const int size = static_cast<int>(wide.size());
    std::string text(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    return text;
}

SignInMode ModeOf(const std::string& variable, bool interactive) {
    if (variable.empty()) {
        return interactive ? SignInMode::kOpenPage : SignInMode::kAtOnce;
    }
    return variable == "browser" ? SignInMode::kOpenPage
           : variable == "wait"  ? SignInMode::kAwaitPage
                                 : SignInMode::kAtOnce;
}

}  // namespace

Code LoadSdkConfiguration(SdkConfiguration& configuration) {
    std::string url = VariableOfProcess(L"ZVACCOUNTSDK_PLATFORM_URL");
    std::string clientId;
    bool interactive = false;
    std::ifstream file(OwnModuleFolder() / "ZMSCoreConfig.json", std::ios::binary);
    if (file) {
        const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const Json::Value root = ParseObject(text);
        clientId = TextMember(root, "client_id");
        url = url.empty() ? TextMember(root, "platform_url") : url;
        interactive = root.isObject() && root["interactive"] == true;
        if (!IsClientId(clientId)) {
            return kConfigurationInvalid;
        }
    } else if (url.empty()) {
        return kConfigurationMissing;
    }
    auto platform = ParsePlatformUrl(url);
    if (!platform) {
        return kConfigurationInvalid;
    }
    configuration = {std::move(clientId), *std::move(platform),
                     ModeOf(VariableOfProcess(L"ZVACCOUNTSDK_INTERACTIVE"), interactive)};
    return kOk;
}

}  // namespace accountsdk
