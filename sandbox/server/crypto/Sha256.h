#pragma once

#include <string>

namespace sandbox {

// The SHA-256 digest (FIPS 180-4), 32 bytes. Throws std::runtime_error when OpenSSL fails.
std::string Sha256(const std::string& bytes);

// Two lower-case hexadecimal digits a byte.
std::string LowerHex(const std::string& bytes);

}  // namespace sandbox
