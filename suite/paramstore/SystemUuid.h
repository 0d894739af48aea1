#pragma once

#include <string>

namespace suite {

// The identity kept in "<stateFolder>\device-uuid": 32 lower-case hexadecimal digits. Made from the system's random
// source when the file is missing or holds anything else; folders are created. Processes that do this at once get one
// value. When the file cannot be written the value is new on every call; empty only when the random source fails.
std::wstring LoadOrCreateSystemUuid(const std::wstring& stateFolder);

}  // namespace suite
