#pragma once

#include <cstdint>

namespace userauth {

// Seconds since 1970-01-01 UTC, taken through local time and back; 0 when local time cannot be told.
std::int64_t CurrentUnixTime();

}  // namespace userauth
