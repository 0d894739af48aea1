#include "KeyServerPeer.h"

#include <gtest/gtest.h>
#include <openssl/rand.h>
#include <openssl/x509.h>

KeyServerPeer::KeyServerPeer() {
    const Owned<EVP_PKEY_CTX> context(EVP_PKEY_CTX_new_id(EVP_PKEY_EC, nullptr));
    EVP_PKEY* key = nullptr;
    EXPECT_EQ(EVP_PKEY_keygen_init(context.get()), 1);
    EXPECT_EQ(EVP_PKEY_CTX_set_ec_paramgen_curve_nid(context.get(), NID_X9_62_prime256v1), 1);
    EXPECT_EQ(EVP_PKEY_keygen(context.get(), &key), 1);
    m_key.reset(key);
}

std::string KeyServerPeer::PublicKeyText() const {
    unsigned char* der = nullptr;
    const int length = i2d_PUBKEY(m_key.get(), &der);
    EXPECT_EQ(length, 91);
    std::string text = ToBase64(Bytes(der, der + length));
    OPENSSL_free(der);
    return text;
}

std::optional<Bytes> KeyServerPeer::UnwrapTemporaryKey(const std::string& token, Bytes* secret) const {
    if (token.size() != 185 || token[124] != ':' || token.find_first_of("+/") != std::string::npos) {
        return std::nullopt;
    }
    const Bytes publicKey = FromBase64(token.substr(0, 124));
    const Bytes blob = FromBase64(token.substr(125));
    const unsigned char* der = publicKey.data();
    const Owned<EVP_PKEY> client(d2i_PUBKEY(nullptr, &der, static_cast<long>(publicKey.size())));
    const Owned<EVP_PKEY_CTX> agreement(EVP_PKEY_CTX_new(m_key.get(), nullptr));
    Bytes shared(32);
    std::size_t length = shared.size();
    if (publicKey.size() != 91 || blob.size() != 44 || client == nullptr ||
        EVP_PKEY_derive_init(agreement.get()) != 1 || EVP_PKEY_derive_set_peer(agreement.get(), client.get()) != 1 ||
        EVP_PKEY_derive(agreement.get(), shared.data(), &length) != 1 || length != shared.size()) {
        return std::nullopt;
    }
    if (secret != nullptr) {
        *secret = shared;
    }
    const Owned<EVP_CIPHER_CTX> cipher(EVP_CIPHER_CTX_new());
    Bytes plaintext(16);
    int produced = 0;
    EVP_DecryptInit_ex(cipher.get(), EVP_aes_256_gcm(), nullptr, shared.data(), blob.data());
    EVP_DecryptUpdate(cipher.get(), plaintext.data(), &produced, blob.data() + 12, 16);
    EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_AEAD_SET_TAG, 16, const_cast<unsigned char*>(blob.data()) + 28);
    const bool authentic = EVP_DecryptFinal_ex(cipher.get(), plaintext.data() + produced, &produced) == 1;
    return authentic ? std::optional<Bytes>(plaintext) : std::nullopt;
}

std::string KeyServerPeer::Wrap(const Bytes& temporaryKey, const Bytes& plaintext) {
    Bytes blob(12 + plaintext.size() + 16);
    EXPECT_EQ(RAND_bytes(blob.data(), 12), 1);
    const Owned<EVP_CIPHER_CTX> cipher(EVP_CIPHER_CTX_new());
    int produced = 0;
    EVP_EncryptInit_ex(cipher.get(), EVP_aes_128_gcm(), nullptr, temporaryKey.data(), blob.data());
    EVP_EncryptUpdate(cipher.get(), blob.data() + 12, &produced, plaintext.data(), static_cast<int>(plaintext.size()));
    EVP_EncryptFinal_ex(cipher.get(), blob.data() + 12 + produced, &produced);
    EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_AEAD_GET_TAG, 16, blob.data() + 12 + plaintext.size());
    return ToBase64(blob);
}
