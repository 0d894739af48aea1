#include "SettingRules.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace suite {
namespace {

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// Length of "http://" or "https://" in any letter case at the start of the text; 0 when neither is there.
std::size_t SchemeLength(const std::string& url) {
    for (const std::string_view scheme : {std::string_view("http://"), std::string_view("https://")}) {
        const auto same = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; };
        if (url.size() >= scheme.size() &&
            std::equal(url.begin(), url.begin() + static_cast<std::ptrdiff_t>(scheme.size()), scheme.begin(), same)) {
            return scheme.size();
        }
    }
    return 0;
}

// Length of HOST in HOST, HOST:PORT or [ADDRESS]:PORT; 0 when there is none. Brackets stand nowhere else.
std::size_t HostLength(std::string_view authority) {
    if (authority.substr(0, 1) != "[") {
        const std::size_t end = std::min(authority.find_first_of(":[]"), authority.size());
        return end < authority.size() && authority[end] != ':' ? 0 : end;
    }
    const std::size_t close = authority.find(']');
    return close == std::string_view::npos || close == 1 ? 0 : close + 1;
}

// What stands behind the host. No port, or nothing behind the colon, means the scheme's own (RFC 3986, 3.2.3).
bool IsUsablePort(std::string_view text) {
    if (text.empty() || text == ":") {
        return true;
    }
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data() + 1, end, port);
    return text[0] == ':' && read.ec == std::errc() && read.ptr == end && port != 0;
}

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

// "C:\..." or "\\server\...", with either separator. Anything else depends on the current drive or folder.
bool IsAbsolute(const std::string& path) {
    if (path.size() < 3) {
        return false;
    }
    const bool drive = std::isalpha(static_cast<unsigned char>(path[0])) != 0 && path[1] == ':' && IsSeparator(path[2]);
    return drive || (IsSeparator(path[0]) && IsSeparator(path[1]));
}

}  // namespace

const char* CheckPlainText(const std::string& text) {
    return std::any_of(text.begin(), text.end(), IsControl) ? "must not contain control characters" : nullptr;
}

const char* CheckBaseUrl(const std::string& url) {
    const std::size_t scheme = SchemeLength(url);
    if (scheme == 0) {
        return "must be an http or https URL";
    }
    if (const char* reason = CheckPlainText(url)) {
        return reason;
    }
    // Paths and queries are appended to the base URL as it stands.
    if (url.find_first_of(" ?#\\@", scheme) != std::string::npos) {
        return "must not contain blanks, backslashes, a user name, a query or a fragment";
    }
    const std::string_view authority = std::string_view(url).substr(scheme, url.find('/', scheme) - scheme);
    const std::size_t host = HostLength(authority);
    if (host == 0) {
        return "must name a host";
    }
    if (!IsUsablePort(authority.substr(host))) {
        return "must have a port from 1 to 65535";
    }
    return url.back() == '/' ? "must not end with a slash" : nullptr;
}

const char* CheckFolder(const std::string& path) {
    if (path.find_first_not_of("\\/") == std::string::npos) {
        return "must name a folder";
    }
    return IsAbsolute(path) ? CheckPlainText(path) : "must be an absolute path";
}

int LegacyItemNumber(const std::string& key) {
    int number = 0;
    const char* const end = key.data() + key.size();
    const auto result = std::from_chars(key.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= 0 && key[0] != '-' ? number : -1;
}

}  // namespace suite
