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

// authority: HOST, HOST:PORT or [ADDRESS]:PORT. No port, or nothing behind the colon, means the scheme's own
// (RFC 3986, 3.2.3).
bool HasUsablePort(std::string_view authority) {
    const std::size_t bracket = authority.rfind(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    if (colon == std::string_view::npos || colon + 1 == authority.size()) {
        return true;
    }
    std::uint16_t port = 0;
    const char* const end = authority.data() + authority.size();
    const auto read = std::from_chars(authority.data() + colon + 1, end, port);
    return read.ec == std::errc() && read.ptr == end && port != 0;
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
    if (authority.empty() || authority[0] == ':') {
        return "must name a host";
    }
    if (!HasUsablePort(authority)) {
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
