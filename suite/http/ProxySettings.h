#pragma once

#include <optional>
#include <string>

#include "UrlText.h"

namespace suite {

// The proxy for one URL: nothing leaves the choice to libcurl, which reads the environment; empty text means none;
// otherwise "host:port" from the system's static settings, never from its scripts or detection. Loopback addresses
// never go through a proxy.
std::optional<std::string> ProxyFor(const UrlParts& url);

}  // namespace suite
