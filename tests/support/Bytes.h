#pragma once

#include <openssl/evp.h>

#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

inline Bytes FromHex(const std::string& hex) {
    Bytes bytes;
    for (std::size_t index = 0; index < hex.size(); index += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(index, 2), nullptr, 16)));
    }
    return bytes;
}

// Standard base64, padded, on one line.
inline std::string ToBase64(const Bytes& bytes) {
    std::string text(bytes.size() * 2 + 4, '\0');
    text.resize(static_cast<std::size_t>(
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(), static_cast<int>(bytes.size()))));
    return text;
}
