#pragma once

#include <string>

#include "crypto/SecretBytes.h"

namespace sandbox {

// The SHA-256 digest (FIPS 180-4), 32 bytes. Throws std::runtime_error when OpenSSL fails.
SecretBytes Sha256(const SecretBytes& bytes);

// Two lower-case hexadecimal digits a byte.
std::string LowerHex(const SecretBytes& bytes);

}  // namespace sandbox
