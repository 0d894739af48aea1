#pragma once

#include <optional>
#include <string>

namespace suite {

// The parts of an absolute http or https URL that the library decides by. Text is UTF-8.
struct UrlParts {
    std::string scheme;     // "http" or "https"
    std::string host;       // lower case, IPv6 with its brackets
    std::string port;       // the scheme's default when the URL names none
    std::string authority;  // as written, without user information: host, and ":port" when the URL names one
    std::string display;    // the URL without user information, query and fragment: fit for logs
};

// All of these throw std::bad_alloc when there is no memory: what cannot be read is never taken for something else.

// Escapes blanks, control characters and bytes outside ASCII as %XX; everything else, escapes included, stays as it is.
// Nothing when the text holds CR, LF or NUL.
std::optional<std::string> EscapeUrl(const std::string& utf8);

// Parts of an escaped URL; nothing when it is not an absolute http or https URL with a host.
std::optional<UrlParts> ParseUrl(const std::string& url);

// A URL as a caller gives it. escaped: nothing when the text holds CR, LF or NUL; parts: nothing when that is no
// absolute http or https URL with a host.
struct GivenUrl {
    std::optional<std::string> escaped;
    std::optional<UrlParts> parts;
};
GivenUrl ReadUrl(const std::string& utf8);

// The absolute URL that a redirect's reference means, seen from base; nothing when it is malformed.
std::optional<std::string> ResolveReference(const std::string& base, const std::string& reference);

// Whether secrets given for one URL may go to the other: same scheme, host and port, or the same host's step from the
// default http port to the default https port.
bool SameParty(const UrlParts& from, const UrlParts& to);

bool IsLoopback(const UrlParts& url);

// The host when it is an IP address, without brackets; empty when it is a name.
std::string AddressOf(const UrlParts& url);

}  // namespace suite
