#pragma once

#include <cstdint>
#include <string>

namespace userauth {

// The two directions serve different peers and take two alphabets (RFC 4648), on purpose: what comes from the server is
// in the standard one (section 4), what goes out is in the URL-safe one (section 5). One cannot read the other.

// URL-safe base64 of length bytes, padded with "=", without line breaks; empty for a length of 0.
std::string Base64UrlEncode(const unsigned char* bytes, std::int32_t length);

// The bytes of a standard base64 text, up to its end or to the first character that is not in the alphabet ("=", "-",
// "_", a blank, a line break): what follows is ignored without error. A last group of n characters gives n - 1 bytes.
std::string Base64Decode(const std::string& text);

}  // namespace userauth
