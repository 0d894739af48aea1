#include "http/FormText.h"

#include <charconv>

namespace sandbox {
namespace {

// The byte of two hexadecimal digits; nothing when they are not two or not hexadecimal.
std::optional<char> EscapedByte(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 2 || error != std::errc{} || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return static_cast<char>(static_cast<unsigned char>(value));
}

bool StandsForItself(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || std::string_view("-_.~").find(character) != std::string_view::npos;
}

std::string FormEncoded(std::string_view text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const auto character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (StandsForItself(character) || character == ' ') {
            encoded += character == ' ' ? '+' : character;
        } else {
            encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
        }
    }
    return encoded;
}

}  // namespace

std::optional<std::string> FormDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            decoded += text[index] == '+' ? ' ' : text[index];
            continue;
        }
        const auto byte = EscapedByte(text.substr(index + 1, 2));
        if (!byte) {
            return std::nullopt;
        }
        decoded += *byte;
        index += 2;
    }
    return FormEncoded(decoded) == text ? std::optional(decoded) : std::nullopt;
}

}  // namespace sandbox
