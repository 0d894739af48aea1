#include "ProxySettings.h"

#include <windows.h>

#include <shlwapi.h>
#include <winhttp.h>

#include <algorithm>
#include <memory>

#include "Utf8Text.h"

namespace {

struct GlobalDeleter {
    void operator()(wchar_t* text) const { GlobalFree(text); }
};

std::wstring TakeText(wchar_t* text) {
    const std::unique_ptr<wchar_t, GlobalDeleter> owner(text);
    return text != nullptr ? std::wstring(text) : std::wstring();
}

bool IsSetInEnvironment(const std::wstring& name) {
    return GetEnvironmentVariableW(name.c_str(), nullptr, 0) > 1;
}

// Entries are patterns with * and ?, or "<local>" for every name without a dot.
bool IsBypassed(const std::wstring& host, std::wstring bypass) {
    std::replace(bypass.begin(), bypass.end(), L' ', L';');
    if (bypass.find(L"<local>") != std::wstring::npos && host.find_first_of(L".:") == std::wstring::npos) {
        return true;
    }
    return !bypass.empty() && PathMatchSpecW(host.c_str(), bypass.c_str());
}

// The system stores either "host:port" for every scheme or "http=host:port;https=host:port".
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

std::optional<std::string> ProxyFor(const UrlParts& url) {
    if (IsLoopback(url)) {
        return std::string();
    }
    const std::wstring scheme = FromUtf8(url.scheme);
    if (IsSetInEnvironment(scheme + L"_proxy") || IsSetInEnvironment(L"all_proxy")) {
        return std::nullopt;
    }
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config = {};
    if (!WinHttpGetIEProxyConfigForCurrentUser(&config)) {
        return std::nullopt;
    }
    TakeText(config.lpszAutoConfigUrl);
    const std::wstring proxy = TakeText(config.lpszProxy);
    const std::wstring bypass = TakeText(config.lpszProxyBypass);
    if (IsBypassed(FromUtf8(url.host), bypass)) {
        return std::string();
    }
    return ToUtf8(ProxyOfScheme(proxy, scheme));
}
