#include "crypto/Sha256.h"

#include "crypto/OpenSslTypes.h"

namespace sandbox {

std::string Sha256(const std::string& bytes) {
    std::string digest(static_cast<std::size_t>(EVP_MD_size(EVP_sha256())), '\0');
    RequireOpenSsl(EVP_Digest(bytes.data(), bytes.size(), Octets(digest.data()), nullptr, EVP_sha256(), nullptr) == 1,
                   "digesting");
    return digest;
}

std::string LowerHex(const std::string& bytes) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += {kDigits[byte >> 4U], kDigits[byte & 0x0FU]};
    }
    return text;
}

}  // namespace sandbox
