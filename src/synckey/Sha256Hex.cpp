#include "synckey/Sha256Hex.h"

#include <openssl/sha.h>

#include "core/BoundedFormat.h"

namespace userauth {

std::string LowerHex(const std::vector<unsigned char>& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        char digits[3];
        FormatString(digits, sizeof(digits), "%02x", byte);
        text += digits;
    }
    return text;
}

std::string Sha256Hex(const std::vector<unsigned char>& bytes) {
    std::vector<unsigned char> digest(SHA256_DIGEST_LENGTH);
    SHA256(bytes.data(), bytes.size(), digest.data());
    return LowerHex(digest);
}

}  // namespace userauth
