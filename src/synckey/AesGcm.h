#pragma once

#include <cstddef>
#include <vector>

namespace userauth {

// Wrapped keys: AES-GCM (NIST SP 800-38D) without additional data, the key's length of 16 or 32 bytes selecting AES-128
// or AES-256. A wrapped blob is
//
//     offset 0     12 bytes        nonce
//     offset 12    16 or 32 bytes  ciphertext
//     offset 28/44 16 bytes        authentication tag
//
// Keys and plaintexts that are passed in are consumed: overwritten before the functions return.

inline constexpr std::size_t kGcmNonceBytes = 12;
inline constexpr std::size_t kGcmTagBytes = 16;
inline constexpr std::size_t kShortKeyBytes = 16;
inline constexpr std::size_t kLongKeyBytes = 32;
inline constexpr std::size_t kShortBlobBytes = kGcmNonceBytes + kShortKeyBytes + kGcmTagBytes;  // 44
inline constexpr std::size_t kLongBlobBytes = kGcmNonceBytes + kLongKeyBytes + kGcmTagBytes;    // 60

// Wraps the first 16 bytes of the plaintext; always a blob of 44 bytes. Empty when plaintext or key is empty. Any other
// failure (a plaintext or nonce that is too short, a key of another length) gives 44 zero bytes, not an empty vector:
// the key-exchange token keeps its form, and InitUserSyncKey gives up on nothing but an empty token.
std::vector<unsigned char> AesGcmEncrypt(std::vector<unsigned char> plaintext, std::vector<unsigned char> key,
                                         std::vector<unsigned char> nonce);

// Unwraps 32 bytes from a blob of exactly 60 bytes. From any other blob of 44 bytes or more it unwraps 16 and ignores
// the rest. Every failure (a tag that does not match, a shorter blob, a key of another length) gives one zero byte, not
// an empty vector: encodeUserKey knows a failure by that. Nothing of the plaintext leaves before its tag was verified.
std::vector<unsigned char> AesGcmDecrypt(std::vector<unsigned char> blob, std::vector<unsigned char> key);

}  // namespace userauth
