#pragma once

#include <optional>

#include "Bytes.h"
#include "crypto/Base64.h"
#include "crypto/P256Key.h"
#include "crypto/WrappedBlob.h"

// The other side of the key exchange, on the sandbox's cryptography: nothing of the service's own is in it.
class KeyServerPeer {
public:
    // Standard base64 of the 91-byte DER public key.
    std::string PublicKeyText() const { return sandbox::Base64Encoded(sandbox::P256PublicKeyDer(m_key.get())); }

    // What a key-exchange token carries; none when any byte of it is wrong. secret receives the agreed one.
    std::optional<Bytes> UnwrapTemporaryKey(const std::string& token, Bytes* secret = nullptr) const {
        if (token.size() != 185 || token[124] != ':') {
            return std::nullopt;
        }
        const auto blob = sandbox::Base64UrlDecoded(token.substr(125));
        const auto client = sandbox::ParseP256PublicKey(sandbox::Base64UrlDecoded(token.substr(0, 124)).value_or(""));
        if (!blob || blob->size() != 44 || client.key == nullptr) {
            return std::nullopt;
        }
        const std::string shared = sandbox::SharedSecret(m_key.get(), client.key.get());
        if (secret != nullptr) {
            secret->assign(shared.begin(), shared.end());
        }
        const auto key = sandbox::UnwrapSecret(*blob, shared);
        return key ? std::optional<Bytes>({key->begin(), key->end()}) : std::nullopt;
    }

    // Standard base64 of a blob as the key service wraps them: nonce, ciphertext, tag.
    static std::string Wrap(const Bytes& temporaryKey, const Bytes& plaintext) {
        return sandbox::Base64Encoded(
            sandbox::WrapSecret({plaintext.begin(), plaintext.end()}, {temporaryKey.begin(), temporaryKey.end()}));
    }

private:
    const sandbox::KeyPtr m_key = sandbox::NewP256Key();
};
