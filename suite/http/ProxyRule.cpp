#include "ProxyRule.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cwctype>
#include <vector>

namespace suite {

namespace {

bool SameWord(const std::wstring& a, const std::wstring& b) {
    return StrCmpIW(a.c_str(), b.c_str()) == 0;
}

std::vector<std::wstring> EntriesOf(const std::wstring& list) {
    constexpr const wchar_t* kSeparators = L"; \t\r\n";
    std::vector<std::wstring> entries;
    std::size_t start = 0;
    while ((start = list.find_first_not_of(kSeparators, start)) != std::wstring::npos) {
        const std::size_t end = std::min(list.find_first_of(kSeparators, start), list.size());
        entries.push_back(list.substr(start, end - start));
        start = end;
    }
    return entries;
}

std::wstring WithoutBrackets(std::wstring host) {
    host.erase(std::remove_if(host.begin(), host.end(), [](wchar_t c) { return c == L'[' || c == L']'; }), host.end());
    return host;
}

// '*' stands for any characters, '?' for one. A fit that fails goes on behind the last star only, so many stars cost no
// more than the two lengths multiplied; the system's own PathMatchSpec may take a time that doubles with each star.
bool Matches(const std::wstring& text, const std::wstring& pattern) {
    std::size_t star = std::wstring::npos;
    std::size_t fitted = 0;
    std::size_t next = 0;
    for (std::size_t at = 0; at < text.size();) {
        const wchar_t wanted = next < pattern.size() ? pattern[next] : L'\0';
        if (wanted == L'*') {
            star = next++;
            fitted = at;
        } else if (wanted != L'\0' && (wanted == L'?' || std::towlower(wanted) == std::towlower(text[at]))) {
            ++at;
            ++next;
        } else if (star != std::wstring::npos) {
            next = star + 1;
            at = ++fitted;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', next) == std::wstring::npos;
}

bool Covers(std::wstring entry, const ProxyTarget& target) {
    const std::wstring host = WithoutBrackets(target.host);
    if (SameWord(entry, L"<local>")) {
        return host.find_first_of(L".:") == std::wstring::npos;
    }
    if (const std::size_t end = entry.find(L"://"); end != std::wstring::npos) {
        if (!SameWord(entry.substr(0, end), target.scheme)) {
            return false;
        }
        entry.erase(0, end + 3);
    }
    const std::size_t colon = entry.rfind(L':');
    const bool addressOnly = entry.find(L':') != colon && entry[colon - 1] != L']';  // IPv6 without brackets
    if (colon != std::wstring::npos && !addressOnly) {
        const std::wstring port = entry.substr(colon + 1);
        if (port != L"*" && port != target.port) {
            return false;
        }
        entry.resize(colon);
    }
    return Matches(host, WithoutBrackets(entry));
}

// In libcurl's notation. A SOCKS proxy resolves the names itself; one without a version speaks version 4, as the
// setting has always meant.
std::wstring Notation(const std::wstring& proxy, bool socks) {
    const std::size_t end = proxy.find(L"://");
    if (end == std::wstring::npos) {
        return socks && !proxy.empty() ? L"socks4a://" + proxy : proxy;
    }
    const std::wstring scheme = proxy.substr(0, end);
    if (SameWord(scheme, L"socks") || SameWord(scheme, L"socks4")) {
        return L"socks4a" + proxy.substr(end);
    }
    return SameWord(scheme, L"socks5") ? L"socks5h" + proxy.substr(end) : proxy;
}

// The scheme's own entry, else one for every scheme, else the SOCKS proxy.
std::wstring ProxyOfScheme(const std::wstring& setting, const std::wstring& scheme) {
    std::wstring common;
    std::wstring socks;
    for (const std::wstring& entry : EntriesOf(setting)) {
        const std::size_t equals = entry.find(L'=');
        if (equals == std::wstring::npos) {
            common = common.empty() ? Notation(entry, false) : common;
        } else if (SameWord(entry.substr(0, equals), scheme)) {
            return Notation(entry.substr(equals + 1), false);
        } else if (SameWord(entry.substr(0, equals), L"socks")) {
            socks = Notation(entry.substr(equals + 1), true);
        }
    }
    return common.empty() ? socks : common;
}

}  // namespace

std::wstring ProxyBySettings(const std::wstring& setting, const std::wstring& bypass, const ProxyTarget& target) {
    const std::vector<std::wstring> direct = EntriesOf(bypass);
    const bool bypassed = std::any_of(direct.begin(), direct.end(),
                                      [&target](const std::wstring& entry) { return Covers(entry, target); });
    return bypassed ? std::wstring() : ProxyOfScheme(setting, target.scheme);
}

}  // namespace suite
