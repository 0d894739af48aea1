#pragma once

#include <string>

namespace suite {

// The parts of a URL that decide its proxy.
struct ProxyTarget {
    std::wstring scheme;  // "http" or "https"
    std::wstring host;
    std::wstring port;
};

// The proxy that the system's static settings name for one URL, in libcurl's notation; empty text means none. Names of
// schemes count in any letter case, entries are parted by ";" or blanks.
// setting: "host:port" for every scheme, "http=host:port;https=host:port", "socks=host:port" for the schemes that have
// no entry of their own; a host with a scheme before it ("socks5://host:port") is taken at its word.
// bypass: host patterns with * and ?, with a scheme before or a port behind them or both; "<local>" stands for every
// name without a dot.
std::wstring ProxyBySettings(const std::wstring& setting, const std::wstring& bypass, const ProxyTarget& target);

}  // namespace suite
