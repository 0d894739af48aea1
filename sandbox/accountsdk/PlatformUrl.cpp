#include "PlatformUrl.h"

#include <algorithm>
#include <string_view>

namespace accountsdk {
namespace {

constexpr std::string_view kScheme = "http://";
constexpr int kHighestPort = 65535;

bool HasHttpScheme(const std::string& text) {
    return text.size() > kScheme.size() &&
           std::equal(kScheme.begin(), kScheme.end(), text.begin(), [](char expected, char found) {
               return found == expected || (found >= 'A' && found <= 'Z' && found - 'A' + 'a' == expected);
           });
}

bool MayNotStandInUrl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte <= ' ' || byte == 0x7F || std::string_view("?#\\@").find(character) != std::string_view::npos;
}

// Nothing unless it is a number from 1 to 65535.
std::optional<int> ParsePort(const std::string& digits) {
    int port = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9' || port > kHighestPort) {
            return std::nullopt;
        }
        port = port * 10 + (digit - '0');
    }
    return port >= 1 && port <= kHighestPort ? std::optional(port) : std::nullopt;
}

}  // namespace

std::optional<PlatformUrl> ParsePlatformUrl(const std::string& text) {
    if (!HasHttpScheme(text) || std::any_of(text.begin(), text.end(), MayNotStandInUrl) || text.back() == '/') {
        return std::nullopt;
    }
    PlatformUrl url;
    url.text = text;
    const std::size_t pathStart = std::min(text.find('/', kScheme.size()), text.size());
    url.path = text.substr(pathStart);
    url.host = text.substr(kScheme.size(), pathStart - kScheme.size());

    const std::size_t bracket = url.host.rfind(']');
    const std::size_t colon = url.host.find(':', bracket == std::string::npos ? 0 : bracket);
    const std::string portText = colon == std::string::npos ? "" : url.host.substr(colon + 1);
    url.host.resize(std::min(colon, url.host.size()));
    const bool bracketed = url.host.size() > 2 && url.host.front() == '[' && url.host.back() == ']';
    if (bracketed) {
        url.host = url.host.substr(1, url.host.size() - 2);
    }
    if (url.host.empty() || url.host.find_first_of(bracketed ? "]" : ":[]") != std::string::npos) {
        return std::nullopt;
    }
    if (!portText.empty()) {  // nothing behind the colon means the scheme's own port (RFC 3986, 3.2.3)
        const auto port = ParsePort(portText);
        if (!port) {
            return std::nullopt;
        }
        url.port = *port;
    }
    return url;
}

}  // namespace accountsdk
