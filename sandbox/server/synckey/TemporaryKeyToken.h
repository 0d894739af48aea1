#pragma once

#include <string>

#include <openssl/evp.h>

#include "crypto/SecretBytes.h"

namespace sandbox {

// What a client's token for the key exchange holds.
struct OpenedToken {
    SecretBytes temporaryKey;  // 16 bytes, under which the client wants its keys
    std::string nonce;         // of the blob that the temporary key came in
    bool leadingZero = false;  // the agreed secret begins with a zero byte
    std::string fault;         // why the token was not opened; the other members are empty then
};

// A token is 185 characters: the client's public key and, behind a colon, its temporary key, wrapped under the secret
// that this public key and serverKey agree on. Both in URL-safe base64 with padding, 124 and 60 characters. Throws
// std::runtime_error only when OpenSSL fails for reasons of its own.
OpenedToken OpenTemporaryKeyToken(const std::string& token, EVP_PKEY* serverKey);

}  // namespace sandbox
