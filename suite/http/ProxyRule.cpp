#include "ProxyRule.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>

namespace suite {

namespace {

bool IsBypassed(const std::wstring& host, std::wstring bypass) {
    std::replace(bypass.begin(), bypass.end(), L' ', L';');
    if (bypass.find(L"<local>") != std::wstring::npos && host.find_first_of(L".:") == std::wstring::npos) {
        return true;
    }
    return !bypass.empty() && PathMatchSpecW(host.c_str(), bypass.c_str());
}

std::wstring ProxyOfScheme(const std::wstring& setting, const std::wstring& scheme) {
    if (setting.find(L'=') == std::wstring::npos) {
        return setting.substr(0, setting.find_first_of(L"; "));
    }
    std::size_t start = 0;
    while (start < setting.size()) {
        const std::size_t end = std::min(setting.find_first_of(L"; ", start), setting.size());
        const std::wstring entry = setting.substr(start, end - start);
        if (entry.rfind(scheme + L"=", 0) == 0) {
            return entry.substr(scheme.size() + 1);
        }
        start = end + 1;
    }
    return {};
}

}  // namespace

std::wstring ProxyBySettings(const std::wstring& setting, const std::wstring& bypass, const std::wstring& scheme,
                             const std::wstring& host) {
    return IsBypassed(host, bypass) ? std::wstring() : ProxyOfScheme(setting, scheme);
}

}  // namespace suite
