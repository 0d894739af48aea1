#pragma once

#include <string>

namespace host {

// Asks whether anything speaks HTTP at a base URL; any status will do. Throws HostError with the cause when nothing
// does.
void RequirePlatform(const std::string& platformUrl);

}  // namespace host
