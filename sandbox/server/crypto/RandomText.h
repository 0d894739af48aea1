#pragma once

#include <cstddef>
#include <string>

namespace sandbox {

// Cryptographically random bytes. Throws std::runtime_error when the generator fails.
std::string RandomBytes(std::size_t count);

// A random token that no one can use without encoding it properly: it contains '+' and '/' and ends in "==".
std::string RandomToken();

// A random authorization code of letters, digits, '-' and '_'.
std::string RandomCode();

// 32 random hexadecimal digits.
std::string RandomUuid();

}  // namespace sandbox
