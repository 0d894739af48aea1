#pragma once

#include <string>

namespace host {

// Throws HostError, with what to do about it, unless the platform answers a request within 10 s, with any status.
void RequirePlatform(const std::string& platformUrl);

// The time that the platform tells with its replies, as it is written in HTTP; empty when it tells none.
std::string PlatformDate(const std::string& platformUrl);

}  // namespace host
