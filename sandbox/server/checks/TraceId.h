#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sandbox {

// Seconds since 1970-01-01 UTC.
std::uint64_t UnixTime();

// What is wrong with a trace id, empty when nothing is: its form, the command, a time further than a day from
// nowSeconds (Unix time; the id carries the low 32 bits), a random part outside the client's alphabet.
std::string TraceIdFault(std::string_view traceId, unsigned command, std::uint64_t nowSeconds);

}  // namespace sandbox
