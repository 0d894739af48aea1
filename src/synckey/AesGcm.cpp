#include "synckey/AesGcm.h"

#include <algorithm>

#include "core/WipeAtExit.h"
#include "synckey/OpenSslTypes.h"

namespace userauth {
namespace {

constexpr int kNonceLength = static_cast<int>(kGcmNonceBytes);
constexpr int kTagLength = static_cast<int>(kGcmTagBytes);

#if OPENSSL_VERSION_NUMBER >= 0x30000000L
// Since this version the functions with a cipher's name stand for a search on every use.
EVP_CIPHER* FetchAes128() {
    return EVP_CIPHER_fetch(nullptr, "AES-128-GCM", nullptr);
}
EVP_CIPHER* FetchAes256() {
    return EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
}
const EVP_CIPHER* Aes128Gcm() {
    return KeptForProcess<FetchAes128, EVP_CIPHER_free>();
}
const EVP_CIPHER* Aes256Gcm() {
    return KeptForProcess<FetchAes256, EVP_CIPHER_free>();
}
#else
const EVP_CIPHER* Aes128Gcm() {
    return EVP_aes_128_gcm();
}
const EVP_CIPHER* Aes256Gcm() {
    return EVP_aes_256_gcm();
}
#endif

// Null for a key length that selects no cipher.
const EVP_CIPHER* CipherFor(const std::vector<unsigned char>& key) {
    switch (key.size()) {
        case kShortKeyBytes:
            return Aes128Gcm();
        case kLongKeyBytes:
            return Aes256Gcm();
        default:
            return nullptr;
    }
}

// Writes ciphertext and tag of 16 plaintext bytes. The nonce's length is set after the key and the nonce, which is
// harmless: 12 is the length that GCM starts with.
bool Seal(const EVP_CIPHER* cipher, const unsigned char* key, const unsigned char* nonce,
          const unsigned char* plaintext, unsigned char* ciphertext, unsigned char* tag) {
    const OwnedCipherContext owned(EVP_CIPHER_CTX_new());
    EVP_CIPHER_CTX* const context = owned.get();
    int produced = 0;
    int rest = 0;
    return context != nullptr && EVP_EncryptInit(context, cipher, key, nonce) == 1 &&
           EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_IVLEN, kNonceLength, nullptr) == 1 &&
           EVP_EncryptUpdate(context, ciphertext, &produced, plaintext, static_cast<int>(kShortKeyBytes)) == 1 &&
           EVP_EncryptFinal(context, ciphertext + produced, &rest) > 0 &&
           EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, kTagLength, tag) == 1;
}

// Writes the plaintext, of which nothing may be used unless the result is positive: its length.
int Open(const EVP_CIPHER* cipher, const unsigned char* key, unsigned char* blob, int length,
         unsigned char* plaintext) {
    constexpr int kAnyPadding = 5;  // without effect, GCM does not pad: kept as it is
    const OwnedCipherContext owned(EVP_CIPHER_CTX_new());
    EVP_CIPHER_CTX* const context = owned.get();
    unsigned char* const ciphertext = blob + kGcmNonceBytes;
    int produced = 0;
    int rest = 0;
    const bool authentic = context != nullptr && EVP_DecryptInit(context, cipher, key, blob) == 1 &&
                           EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_IVLEN, kNonceLength, nullptr) == 1 &&
                           EVP_CIPHER_CTX_set_padding(context, kAnyPadding) == 1 &&
                           EVP_DecryptUpdate(context, plaintext, &produced, ciphertext, length) == 1 &&
                           EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_TAG, kTagLength, ciphertext + length) == 1 &&
                           EVP_DecryptFinal(context, plaintext + produced, &rest) > 0;
    return authentic ? produced + rest : 0;
}

}  // namespace

std::vector<unsigned char> AesGcmEncrypt(std::vector<unsigned char> plaintext, std::vector<unsigned char> key,
                                         std::vector<unsigned char> nonce) {
    const WipeAtExit wipePlaintext(plaintext);
    const WipeAtExit wipeKey(key);
    if (plaintext.empty() || key.empty()) {
        return {};
    }
    std::vector<unsigned char> blob(kShortBlobBytes);
    const EVP_CIPHER* const cipher = CipherFor(key);
    if (cipher == nullptr || plaintext.size() < kShortKeyBytes || nonce.size() < kGcmNonceBytes) {
        return blob;
    }
    unsigned char* const ciphertext = blob.data() + kGcmNonceBytes;
    if (!Seal(cipher, key.data(), nonce.data(), plaintext.data(), ciphertext, ciphertext + kShortKeyBytes)) {
        blob.assign(kShortBlobBytes, 0);
        return blob;
    }
    std::copy_n(nonce.begin(), kGcmNonceBytes, blob.begin());
    return blob;
}

std::vector<unsigned char> AesGcmDecrypt(std::vector<unsigned char> blob, std::vector<unsigned char> key) {
    const WipeAtExit wipeKey(key);
    const EVP_CIPHER* const cipher = CipherFor(key);
    if (cipher == nullptr || blob.size() < kShortBlobBytes) {
        return {0};
    }
    const std::size_t length = blob.size() == kLongBlobBytes ? kLongKeyBytes : kShortKeyBytes;
    std::vector<unsigned char> plaintext(blob.size());
    const int produced = Open(cipher, key.data(), blob.data(), static_cast<int>(length), plaintext.data());
    if (produced <= 0) {
        OPENSSL_cleanse(plaintext.data(), plaintext.size());
        return {0};
    }
    plaintext.resize(static_cast<std::size_t>(produced));
    return plaintext;
}

}  // namespace userauth
