#pragma once

#include <map>
#include <string>

#include "Bytes.h"

// Two hexadecimal digits for each byte, with something in front of them.
inline std::string Hexadecimal(const std::string& bytes, const std::string& front,
                               const char* digits = "0123456789abcdef") {
    std::string text;
    for (const char byte : bytes) {
        text += front + digits[static_cast<unsigned char>(byte) >> 4] + digits[static_cast<unsigned char>(byte) & 0xF];
    }
    return text;
}

// What a secret may look like in a text. Base64 has three forms, by the bytes in front; its first and last digits,
// which depend on the neighbours, are left out.
inline std::map<std::string, std::string> FormsOf(const std::string& secret) {
    std::map<std::string, std::string> forms = {{"plain", secret},
                                                {"URL", Hexadecimal(secret, "%", "0123456789ABCDEF")},
                                                {"hex", Hexadecimal(secret, "")},
                                                {"upper-case hex", Hexadecimal(secret, "", "0123456789ABCDEF")},
                                                {"JSON-escaped", Hexadecimal(secret, "\\u00")}};
    for (const char c : secret) {
        forms["UTF-16"] += {c, '\0'};
    }
    for (std::size_t front = 0; front < 3; ++front) {
        const std::string shifted = std::string(front, 'x') + secret;
        const std::string text = ToBase64(Bytes(shifted.begin(), shifted.end()));
        forms["base64 " + std::to_string(front)] = text.substr(4, text.size() - 8);
    }
    return forms;
}
