#pragma once

#include <memory>
#include <optional>

#include "Bytes.h"

// The other side of the key exchange, on OpenSSL's EVP interface: none of the service's own cryptography is in it.
class KeyServerPeer {
public:
    KeyServerPeer();

    // Standard base64 of the 91-byte DER public key.
    std::string PublicKeyText() const;

    // What a key-exchange token carries; none when any byte of it is wrong. secret receives the agreed one.
    std::optional<Bytes> UnwrapTemporaryKey(const std::string& token, Bytes* secret = nullptr) const;

    // Standard base64 of a blob as the key service wraps them: nonce, ciphertext, tag.
    static std::string Wrap(const Bytes& temporaryKey, const Bytes& plaintext);

private:
    struct Release {
        void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
        void operator()(EVP_PKEY_CTX* context) const { EVP_PKEY_CTX_free(context); }
        void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
    };
    template <typename T>
    using Owned = std::unique_ptr<T, Release>;

    Owned<EVP_PKEY> m_key;
};
