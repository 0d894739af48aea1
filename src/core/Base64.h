#pragma once

#include <cstdint>
#include <string>

namespace userauth {

// Two alphabets (RFC 4648): the standard one (section 4) and the URL-safe one (section 5). One cannot read the other.
// The key exchange takes both, on purpose: the key server sends the standard one and wants the URL-safe one. The
// authorization header is in the standard one.

// URL-safe base64 of length bytes, padded with "=", without line breaks; empty for a length of 0. Of a key, not of a
// gigabyte: the text's length must fit an int, here and below.
std::string Base64UrlEncode(const unsigned char* bytes, std::int32_t length);

// Standard base64 of the bytes, padded, on one line: what OpenSSL's filter over a memory sink gives without line feeds.
// Throws std::bad_alloc when memory runs out, so that no header is sent with half a value.
std::string EncodeStandardBase64(const std::string& bytes);

// The bytes of a standard base64 text, up to its end or to the first character that is not in the alphabet ("=", "-",
// "_", a blank, a line break): what follows is ignored without error. A last group of n characters gives n - 1 bytes.
std::string Base64Decode(const std::string& text);

}  // namespace userauth
