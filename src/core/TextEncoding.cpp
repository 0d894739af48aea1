#include "core/TextEncoding.h"

#include <windows.h>

#include <limits>
#include <type_traits>
#include <utility>

namespace userauth {
namespace {

constexpr std::size_t kLongestText = static_cast<std::size_t>(std::numeric_limits<int>::max());

bool IsUnreserved(unsigned char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_' || byte == '.' || byte == '~';
}

// ASCII is the same in both code pages, and most texts are nothing else: those need no question to Windows. False, and
// the copy untouched: there is another character, or another code page.
template <typename Text, typename Copy>
bool CopyAscii(const Text& text, Copy& copy, unsigned codePage) {
    if (codePage != kAnsiCodePage && codePage != kUtf8CodePage) {
        return false;
    }
    std::make_unsigned_t<typename Text::value_type> bits = 0;
    for (const auto character : text) {
        bits |= static_cast<decltype(bits)>(character);
    }
    if (bits > 0x7F) {
        return false;
    }
    copy = Copy(text.begin(), text.end());
    return true;
}

}  // namespace

bool MultiByteToWide(const std::string& text, std::wstring& wide, unsigned codePage) {
    if (text.empty() || text.size() > kLongestText) {
        return false;
    }
    if (CopyAscii(text, wide, codePage)) {
        return true;
    }
    const int bytes = static_cast<int>(text.size());
    const int characters = MultiByteToWideChar(codePage, 0, text.data(), bytes, nullptr, 0);
    if (characters < 1) {
        return false;
    }
    std::wstring converted(static_cast<std::size_t>(characters), L'\0');
    const bool done = MultiByteToWideChar(codePage, 0, text.data(), bytes, converted.data(), characters) > 0;
    wide = std::move(converted);
    return done;
}

bool WideToMultiByte(const std::wstring& wide, std::string& text, unsigned codePage) {
    if (wide.empty() || wide.size() > kLongestText) {
        return false;
    }
    if (CopyAscii(wide, text, codePage)) {
        return true;
    }
    const int characters = static_cast<int>(wide.size());
    const int bytes = WideCharToMultiByte(codePage, 0, wide.data(), characters, nullptr, 0, nullptr, nullptr);
    if (bytes < 1) {
        return false;
    }
    std::string converted(static_cast<std::size_t>(bytes), '\0');
    const bool done =
        WideCharToMultiByte(codePage, 0, wide.data(), characters, converted.data(), bytes, nullptr, nullptr) > 0;
    text = std::move(converted);
    return done;
}

std::wstring MultiByteToWide(const std::string& text, unsigned codePage) {
    std::wstring wide;
    MultiByteToWide(text, wide, codePage);
    return wide;
}

std::string WideToMultiByte(const std::wstring& wide, unsigned codePage) {
    std::string text;
    WideToMultiByte(wide, text, codePage);
    return text;
}

std::string UrlEncodeToBytes(const std::wstring& text) {
    constexpr char kHexadecimal[] = "0123456789ABCDEF";
    const std::string bytes = WideToMultiByte(text, kAnsiCodePage);
    std::string encoded;
    encoded.reserve(bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (IsUnreserved(byte)) {
            encoded += character;
        } else if (byte == ' ') {
            encoded += '+';
        } else {
            encoded += '%';
            encoded += kHexadecimal[byte >> 4];
            encoded += kHexadecimal[byte & 0x0F];
        }
    }
    return encoded;
}

std::wstring UrlEncode(const std::wstring& text) {
    const std::string encoded = UrlEncodeToBytes(text);
    return std::wstring(encoded.begin(), encoded.end());  // ASCII, which is the same in every code page
}

}  // namespace userauth
