#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "synckey/OpenSslTypes.h"

namespace userauth {

inline constexpr std::size_t kPublicKeyBytes = 91;     // DER SubjectPublicKeyInfo of a P-256 key (RFC 5480)
inline constexpr std::size_t kPublicKeyHeader = 26;    // its bytes in front of the point
inline constexpr std::size_t kPointBytes = 65;         // 0x04, X, Y (SEC 1, uncompressed)
inline constexpr std::size_t kSharedSecretBytes = 32;  // X of the shared point, big-endian, leading zeros kept

using UncompressedPoint = std::array<unsigned char, kPointBytes>;
using SharedSecret = std::array<unsigned char, kSharedSecretBytes>;

// What one ephemeral agreement on the curve P-256 yields. Whatever fails stays all zero and is not reported.
struct KeyAgreement {
    KeyAgreement() = default;
    ~KeyAgreement();
    KeyAgreement(const KeyAgreement&) = delete;
    KeyAgreement& operator=(const KeyAgreement&) = delete;

    UncompressedPoint clientPoint{};
    SharedSecret secret{};
};

// The point of a DER public key, taken from its place; the DER is not parsed. Missing bytes read as zero.
UncompressedPoint PointOfPublicKey(const std::string& publicKey);

// Agrees with the owner of a point by a fresh key of our own, which is gone afterwards. The client point is zero when
// the other point does not begin with 0x04; the secret is zero when that point is not on the curve.
void AgreeByFreshKey(const UncompressedPoint& peer, KeyAgreement& agreement);

// ECDH without key derivation (SP 800-56A): the raw X coordinate. False, with the secret zero, when the peer's point is
// no point of the key's curve or OpenSSL fails.
bool ComputeSharedSecret(const EC_KEY& own, const UncompressedPoint& peer, SharedSecret& secret);

}  // namespace userauth
