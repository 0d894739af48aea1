#include "core/Base64.h"

#include <algorithm>
#include <string_view>

namespace userauth {
namespace {

constexpr std::string_view kStandardAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kUrlAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

constexpr int kBytesOfGroup = 3;
constexpr int kCharactersOfGroup = 4;
constexpr unsigned kSixBits = 0x3F;

// Appends the first bytes of a group, which lies in the low 24 bits.
void AppendBytes(std::string& out, unsigned group, int count) {
    for (int index = 0; index < count; ++index) {
        out += static_cast<char>((group >> (16 - 8 * index)) & 0xFFU);
    }
}

}  // namespace

std::string Base64UrlEncode(const unsigned char* bytes, std::int32_t length) {
    std::string text;
    while (length > 0) {
        const int present = std::min<std::int32_t>(kBytesOfGroup, length);
        unsigned group = 0;
        for (int index = 0; index < kBytesOfGroup; ++index) {
            group = (group << 8) | (index < present ? bytes[index] : 0U);
        }
        for (int index = 0; index < kCharactersOfGroup; ++index) {
            text += index <= present ? kUrlAlphabet[(group >> (18 - 6 * index)) & kSixBits] : '=';
        }
        bytes += present;
        length -= present;
    }
    return text;
}

std::string Base64Decode(const std::string& text) {
    std::string bytes;
    unsigned group = 0;
    int characters = 0;
    for (const char character : text) {
        const std::size_t value = kStandardAlphabet.find(character);
        if (value == std::string_view::npos) {
            break;
        }
        group = (group << 6) | static_cast<unsigned>(value);
        if (++characters == kCharactersOfGroup) {
            AppendBytes(bytes, group, kBytesOfGroup);
            group = 0;
            characters = 0;
        }
    }
    if (characters > 0) {
        AppendBytes(bytes, group << (6 * (kCharactersOfGroup - characters)), characters - 1);
    }
    return bytes;
}

}  // namespace userauth
