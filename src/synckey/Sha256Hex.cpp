#include "synckey/Sha256Hex.h"

#include <openssl/sha.h>

#include "synckey/OpenSslTypes.h"

namespace userauth {
namespace {

#if OPENSSL_VERSION_NUMBER >= 0x30000000L
// Since this version SHA256 searches for the digest on every use.
EVP_MD* FetchSha256() {
    return EVP_MD_fetch(nullptr, "SHA256", nullptr);
}
void Digest(const std::vector<unsigned char>& bytes, std::vector<unsigned char>& digest) {
    const EVP_MD* const sha256 = KeptForProcess<FetchSha256, EVP_MD_free>();
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, sha256, nullptr);
}
#else
void Digest(const std::vector<unsigned char>& bytes, std::vector<unsigned char>& digest) {
    SHA256(bytes.data(), bytes.size(), digest.data());
}
#endif

}  // namespace

std::string LowerHex(const std::vector<unsigned char>& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

std::string Sha256Hex(const std::vector<unsigned char>& bytes) {
    std::vector<unsigned char> digest(SHA256_DIGEST_LENGTH);
    Digest(bytes, digest);
    return LowerHex(digest);
}

}  // namespace userauth
