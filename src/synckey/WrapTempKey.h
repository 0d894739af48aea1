#pragma once

#include <string>
#include <vector>

namespace userauth {

// Wraps a 16-byte temporary key for the owner of a P-256 public key (standard base64 of the 91-byte DER form), by an
// ephemeral ECDH agreement whose raw secret is the AES-256-GCM key. The key-exchange token:
//
//     URL-safe base64 of the client's 91-byte public key, ":", URL-safe base64 of the 44-byte wrapped blob (AesGcm.h)
//
// 124 + 1 + 60 characters. There is no failure: a server key that is no public key yields a token of the same length,
// made with a secret (and perhaps a client point) of zeros. docs/key-exchange.md says what follows from that.
std::string WrapTempKey(std::string serverPublicKey, std::vector<unsigned char> temporaryKey);

}  // namespace userauth
