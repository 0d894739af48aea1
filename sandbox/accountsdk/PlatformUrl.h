#pragma once

#include <optional>
#include <string>

namespace accountsdk {

// The base URL of a platform, taken apart for a client of plain HTTP.
struct PlatformUrl {
    std::string text;  // as it was configured
    std::string host;  // an IPv6 address without its brackets
    int port = 80;
    std::string path;  // empty, or one that begins with a slash and ends without; requests add theirs to it
};

// The scheme http in any letter case and a host, perhaps a port from 1 to 65535 and a path; no slash at the end, and no
// blank, control character, backslash, user name, query or fragment. Nothing for any other text. The client's own
// settings are held to the same rule; they may have https besides, which this SDK does not speak.
std::optional<PlatformUrl> ParsePlatformUrl(const std::string& text);

}  // namespace accountsdk
