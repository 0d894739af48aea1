#include "crypto/Sha256.h"

#include "crypto/OpenSslTypes.h"

namespace sandbox {

SecretBytes Sha256(const SecretBytes& bytes) {
    SecretBytes digest(static_cast<std::size_t>(EVP_MD_size(EVP_sha256())));
    RequireOpenSsl(EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) == 1,
                   "digesting a key");
    return digest;
}

std::string LowerHex(const SecretBytes& bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const unsigned byte : bytes) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0x0FU];
    }
    return text;
}

}  // namespace sandbox
