#include "FormText.h"

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
    return decoded;
}

}  // namespace sandbox
