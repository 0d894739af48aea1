#pragma once

#include <string>

namespace userauth {

// Standard base64 (RFC 4648, section 4, padded) on one line, through OpenSSL's filter. Empty when memory runs out.
std::string EncodeStandardBase64(const std::string& bytes);

}  // namespace userauth
