#pragma once

#include <optional>
#include <string>

namespace sandbox {

// Standard base64 (RFC 4648, section 4) with padding and without line feeds.
std::string Base64Encoded(const std::string& bytes);

// Nothing unless text is exactly what Base64Encoded would make of the bytes.
std::optional<std::string> Base64Decoded(const std::string& text);

// The same for the alphabet with '-' and '_' (RFC 4648, section 5), with padding.
std::optional<std::string> Base64UrlDecoded(std::string text);

}  // namespace sandbox
