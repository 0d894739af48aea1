#pragma once

#include <cstddef>
#include <string>

namespace sandbox {

// Cryptographically random bytes. Throws std::runtime_error when the generator fails.
std::string RandomBytes(std::size_t count);

// A random token. It contains '+' and '/' and ends in "==", so that a client that does not encode it properly fails.
std::string RandomToken();

// A random authorization code of letters, digits, '-' and '_'.
std::string RandomCode();

// 32 random hexadecimal digits.
std::string RandomUuid();

}  // namespace sandbox
