#pragma once

#include <string>
#include <vector>

namespace userauth {

// Each byte as two lower-case hexadecimal digits.
std::string LowerHex(const std::vector<unsigned char>& bytes);

// SHA-256 (FIPS 180-4) of the bytes: 64 lower-case hexadecimal characters.
std::string Sha256Hex(const std::vector<unsigned char>& bytes);

}  // namespace userauth
