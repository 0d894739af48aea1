#include "ProxySettings.h"

#include <windows.h>

#include <winhttp.h>

#include <memory>

#include "ProxyRule.h"
#include "Utf8Text.h"

namespace suite {

namespace {

struct GlobalDeleter {
    void operator()(wchar_t* text) const { GlobalFree(text); }
};
using SystemText = std::unique_ptr<wchar_t, GlobalDeleter>;

std::wstring TextOf(const SystemText& text) {
    return text ? std::wstring(text.get()) : std::wstring();
}

bool IsSetInEnvironment(const std::wstring& name) {
    return GetEnvironmentVariableW(name.c_str(), nullptr, 0) > 1;
}

}  // namespace

std::optional<std::string> ProxyFor(const UrlParts& url) {
    if (IsLoopback(url)) {
        return std::string();
    }
    const std::wstring scheme = suite::WideFromUtf8(url.scheme);
    if (IsSetInEnvironment(scheme + L"_proxy") || IsSetInEnvironment(L"all_proxy")) {
        return std::nullopt;
    }
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG config = {};
    if (!WinHttpGetIEProxyConfigForCurrentUser(&config)) {
        return std::nullopt;
    }
    const SystemText script(config.lpszAutoConfigUrl);  // not read: the library runs no proxy scripts
    const SystemText proxy(config.lpszProxy);
    const SystemText bypass(config.lpszProxyBypass);
    const ProxyTarget target{scheme, WideFromUtf8(url.host), WideFromUtf8(url.port)};
    return Utf8FromWide(ProxyBySettings(TextOf(proxy), TextOf(bypass), target));
}

}  // namespace suite
