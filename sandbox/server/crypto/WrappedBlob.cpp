#include "crypto/WrappedBlob.h"

#include "crypto/OpenSslTypes.h"
#include "crypto/RandomText.h"

namespace sandbox {
namespace {

const EVP_CIPHER* CipherFor(const std::string& key) {
    switch (key.size()) {
        case 16:
            return EVP_aes_128_gcm();
        case 32:
            return EVP_aes_256_gcm();
        default:
            throw std::runtime_error("a wrapping key has neither 16 nor 32 bytes");
    }
}

CipherContextPtr NewContext() {
    CipherContextPtr context(EVP_CIPHER_CTX_new());
    RequireOpenSsl(context != nullptr, "preparing a cipher");
    return context;
}

}  // namespace

std::string WrapSecret(const std::string& secret, const std::string& key) {
    const auto context = NewContext();
    std::string blob = RandomBytes(kBlobNonceSize);
    blob.resize(kBlobNonceSize + secret.size() + kBlobTagSize);
    char* ciphertext = blob.data() + kBlobNonceSize;
    char* tag = ciphertext + secret.size();
    int written = 0;
    int rest = 0;
    RequireOpenSsl(
        EVP_EncryptInit_ex(context.get(), CipherFor(key), nullptr, Octets(key.data()), Octets(blob.data())) == 1 &&
            EVP_EncryptUpdate(context.get(), Octets(ciphertext), &written, Octets(secret.data()),
                              static_cast<int>(secret.size())) == 1 &&
            EVP_EncryptFinal_ex(context.get(), Octets(ciphertext) + written, &rest) == 1 &&
            EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, static_cast<int>(kBlobTagSize), tag) == 1,
        "wrapping a secret");
    return blob;
}

std::optional<std::string> UnwrapSecret(const std::string& blob, const std::string& key) {
    if (blob.size() <= kBlobNonceSize + kBlobTagSize) {
        return std::nullopt;
    }
    const auto context = NewContext();
    std::string secret(blob.size() - kBlobNonceSize - kBlobTagSize, '\0');
    const char* ciphertext = blob.data() + kBlobNonceSize;
    std::string tag = blob.substr(blob.size() - kBlobTagSize);  // a copy: the library takes no constant
    int written = 0;
    int rest = 0;
    RequireOpenSsl(
        EVP_DecryptInit_ex(context.get(), CipherFor(key), nullptr, Octets(key.data()), Octets(blob.data())) == 1 &&
            EVP_DecryptUpdate(context.get(), Octets(secret.data()), &written, Octets(ciphertext),
                              static_cast<int>(secret.size())) == 1 &&
            EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, static_cast<int>(kBlobTagSize), tag.data()) == 1,
        "unwrapping a secret");
    if (EVP_DecryptFinal_ex(context.get(), Octets(secret.data()) + written, &rest) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    return secret;
}

}  // namespace sandbox
