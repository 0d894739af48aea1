#pragma once

#include <string>

namespace suite {

// The proxy that the system's static settings name for one URL; empty text means none. setting: "host:port" for every
// scheme, or "http=host:port;https=host:port". bypass: host patterns with * and ?, parted by ";" or blanks; "<local>"
// stands for every name without a dot.
std::wstring ProxyBySettings(const std::wstring& setting, const std::wstring& bypass, const std::wstring& scheme,
                             const std::wstring& host);

}  // namespace suite
