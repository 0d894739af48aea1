#include "http/FormText.h"

namespace sandbox {
namespace {

bool StandsForItself(char character) {
    constexpr std::string_view kOthers = "-_.~";
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || kOthers.find(character) != std::string_view::npos;
}

// The byte of two hexadecimal digits; nothing when they are not two, or when the byte needs no escape.
std::optional<char> EscapedByte(std::string_view digits) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    if (digits.size() != 2 || digits.find_first_not_of(kDigits) != std::string_view::npos) {
        return std::nullopt;
    }
    const auto byte = static_cast<char>(kDigits.find(digits[0]) * kDigits.size() + kDigits.find(digits[1]));
    return byte == ' ' || StandsForItself(byte) ? std::nullopt : std::optional(byte);
}

}  // namespace

std::optional<std::string> FormDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%') {
            const auto byte = EscapedByte(text.substr(index + 1, 2));
            if (!byte) {
                return std::nullopt;
            }
            decoded += *byte;
            index += 2;
        } else if (text[index] == '+') {
            decoded += ' ';
        } else if (StandsForItself(text[index])) {
            decoded += text[index];
        } else {
            return std::nullopt;
        }
    }
    return decoded;
}

}  // namespace sandbox
