#pragma once

#include <cstddef>
#include <optional>
#include <string>

// A short secret wrapped under a key with AES-GCM (NIST SP 800-38D), without additional data. Bytes of a blob: 12 of
// nonce, the ciphertext, as long as the secret, and 16 of tag. A key of 16 bytes means AES-128, one of 32 AES-256.
namespace sandbox {

inline constexpr std::size_t kBlobNonceSize = 12;
inline constexpr std::size_t kBlobTagSize = 16;

// Under a fresh random nonce. Throws std::runtime_error when the key has another size or OpenSSL fails.
std::string WrapSecret(const std::string& secret, const std::string& key);

// Nothing unless the tag is right. Throws as WrapSecret does.
std::optional<std::string> UnwrapSecret(const std::string& blob, const std::string& key);

}  // namespace sandbox
