#pragma once

#include <cstdint>
#include <string>

namespace userauth {

// Seconds since 1970-01-01 UTC, taken through local time and back; 0 when local time cannot be told.
std::int64_t CurrentUnixTime();

// The local time as "%Y-%m-%d %H:%M:%S", 19 characters; empty when it cannot be told.
std::string LocalTimeStamp();

}  // namespace userauth
