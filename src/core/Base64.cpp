#include "core/Base64.h"

#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace userauth {
namespace {

constexpr std::string_view kStandardAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::size_t kBytesOfGroup = 3;
constexpr std::size_t kCharactersOfGroup = 4;
constexpr unsigned kForeign = 0x80;  // in the table: no letter of the alphabet

using ValueTable = std::array<unsigned char, 256>;

constexpr ValueTable MakeValues() {
    ValueTable values{};
    for (unsigned char& value : values) {
        value = kForeign;
    }
    for (std::size_t at = 0; at < kStandardAlphabet.size(); ++at) {
        values[static_cast<unsigned char>(kStandardAlphabet[at])] = static_cast<unsigned char>(at);
    }
    return values;
}
constexpr ValueTable kValues = MakeValues();

unsigned ValueOf(char character) {
    return kValues[static_cast<unsigned char>(character)];
}

// Writes the first bytes of a group, which lies in the low 24 bits; returns the position behind them.
char* WriteBytes(char* out, unsigned group, std::size_t count) {
    for (unsigned shift = 16; count > 0; --count, shift -= 8) {
        *out++ = static_cast<char>((group >> shift) & 0xFFU);
    }
    return out;
}

// What begins at a whole group's place but is cut by the text's end or by a foreign character. n characters give n - 1
// bytes.
char* WriteLastGroup(char* out, std::string_view rest) {
    unsigned group = 0;
    std::size_t characters = 0;
    for (; characters < rest.size() && ValueOf(rest[characters]) != kForeign; ++characters) {
        group |= ValueOf(rest[characters]) << (18 - 6 * characters);
    }
    return WriteBytes(out, group, characters > 0 ? characters - 1 : 0);
}

std::string Encode(const unsigned char* bytes, std::size_t length) {
    std::string text((length + kBytesOfGroup - 1) / kBytesOfGroup * kCharactersOfGroup, '\0');
    // Writes a zero behind the text, where the string has its own.
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes, static_cast<int>(length));
    return text;
}

}  // namespace

std::string EncodeStandardBase64(const std::string& bytes) {
    return Encode(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::string Base64UrlEncode(const unsigned char* bytes, std::int32_t length) {
    if (length <= 0) {
        return {};
    }
    std::string text = Encode(bytes, static_cast<std::size_t>(length));
    for (char& character : text) {
        character = character == '+' ? '-' : character == '/' ? '_' : character;
    }
    return text;
}

std::string Base64Decode(const std::string& text) {
    std::string bytes((text.size() / kCharactersOfGroup + 1) * kBytesOfGroup, '\0');
    char* out = bytes.data();
    std::size_t at = 0;
    for (; at + kCharactersOfGroup <= text.size(); at += kCharactersOfGroup, out += kBytesOfGroup) {
        const unsigned first = ValueOf(text[at]);
        const unsigned second = ValueOf(text[at + 1]);
        const unsigned third = ValueOf(text[at + 2]);
        const unsigned fourth = ValueOf(text[at + 3]);
        if (((first | second | third | fourth) & kForeign) != 0) {
            break;
        }
        const unsigned group = (first << 18) | (second << 12) | (third << 6) | fourth;
        out[0] = static_cast<char>(group >> 16);
        out[1] = static_cast<char>((group >> 8) & 0xFFU);
        out[2] = static_cast<char>(group & 0xFFU);
    }
    out = WriteLastGroup(out, std::string_view(text).substr(at, kCharactersOfGroup));
    bytes.resize(static_cast<std::size_t>(out - bytes.data()));
    return bytes;
}

}  // namespace userauth
