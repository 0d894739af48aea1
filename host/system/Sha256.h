#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace host {

// SHA-256 (FIPS 180-4) of the bytes, 64 lower-case hexadecimal digits, by the system's own cryptography. Throws
// HostError with kExitStepFailed.
std::string Sha256Hex(const std::uint8_t* bytes, std::size_t count);

}  // namespace host
