#pragma once

#include <cstddef>
#include <string>

#include "crypto/OpenSslTypes.h"

// Keys on the curve P-256 (FIPS 186-4) and the agreement of two of them.
namespace sandbox {

// A public key as a DER SubjectPublicKeyInfo (RFC 5480): 26 bytes that say what it is, then the uncompressed point:
// 04, X and Y of 32 bytes each, big-endian.
inline constexpr std::size_t kP256PublicKeySize = 91;
inline constexpr std::size_t kSharedSecretSize = 32;

// A new key pair. Throws std::runtime_error when OpenSSL fails, as all of these do.
KeyPtr NewP256Key();

std::string P256PublicKeyDer(EVP_PKEY* key);

struct ParsedPublicKey {
    KeyPtr key;
    std::string fault;  // why there is no key
};
// Takes only a point that is on the curve.
ParsedPublicKey ParseP256PublicKey(const std::string& der);

// The X coordinate of the shared point as it is, without a key derivation: always 32 bytes, leading zeros kept.
std::string SharedSecret(EVP_PKEY* own, EVP_PKEY* peer);

}  // namespace sandbox
