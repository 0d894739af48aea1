#include "synckey/Sha256Hex.h"

#include <openssl/sha.h>

#include <array>

#include "synckey/OpenSslTypes.h"

namespace userauth {
namespace {

using Sha256Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

#if OPENSSL_VERSION_NUMBER >= 0x30000000L
// Since this version SHA256 searches for the digest on every use.
EVP_MD* FetchSha256() {
    return EVP_MD_fetch(nullptr, "SHA256", nullptr);
}
void Digest(const std::vector<unsigned char>& bytes, Sha256Digest& digest) {
    const EVP_MD* const sha256 = KeptForProcess<FetchSha256, EVP_MD_free>();
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, sha256, nullptr);
}
#else
void Digest(const std::vector<unsigned char>& bytes, Sha256Digest& digest) {
    SHA256(bytes.data(), bytes.size(), digest.data());
}
#endif

template <typename Bytes>
std::string HexOf(const Bytes& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text(2 * bytes.size(), '0');
    char* out = text.data();
    for (const unsigned char byte : bytes) {
        *out++ = kDigits[byte >> 4];
        *out++ = kDigits[byte & 0x0F];
    }
    return text;
}

}  // namespace

std::string LowerHex(const std::vector<unsigned char>& bytes) {
    return HexOf(bytes);
}

std::string Sha256Hex(const std::vector<unsigned char>& bytes) {
    Sha256Digest digest{};
    Digest(bytes, digest);
    return HexOf(digest);
}

}  // namespace userauth
