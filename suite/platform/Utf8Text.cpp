#include "Utf8Text.h"

#include <windows.h>

#include <stdexcept>

namespace suite {
namespace {

// The platform's lengths are int.
int CheckedLength(std::size_t length) {
    constexpr std::size_t kLimit = std::size_t{1} << 29;
    if (length > kLimit) {
        throw std::length_error("text too long to convert");
    }
    return static_cast<int>(length);
}

// The text with the other type's characters when all of it is ASCII, the same in both, as most texts are; else false.
template <typename From, typename To>
bool CopyAscii(From text, To& copy) {
    copy.resize(text.size());
    unsigned all = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        all |= static_cast<unsigned>(text[at]);
        copy[at] = static_cast<typename To::value_type>(text[at]);
    }
    return all < 0x80;
}

// flags: 0 or MB_ERR_INVALID_CHARS.
std::optional<std::wstring> Decode(std::string_view text, DWORD flags) {
    const int bytes = CheckedLength(text.size());
    std::wstring ascii;
    if (CopyAscii(text, ascii)) {
        return ascii;
    }
    const int length = MultiByteToWideChar(CP_UTF8, flags, text.data(), bytes, nullptr, 0);
    if (length <= 0) {
        return std::nullopt;
    }
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, flags, text.data(), bytes, wide.data(), length);
    return wide;
}

}  // namespace

std::string Utf8FromWide(std::wstring_view text) {
    const int units = CheckedLength(text.size());
    std::string bytes;
    if (CopyAscii(text, bytes)) {
        return bytes;
    }
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    bytes.assign(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (!bytes.empty()) {
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(), length, nullptr, nullptr);
    }
    return bytes;
}

std::wstring WideFromUtf8(std::string_view text) {
    return Decode(text, 0).value_or(std::wstring());
}

std::optional<std::wstring> WideFromValidUtf8(std::string_view text) {
    return Decode(text, MB_ERR_INVALID_CHARS);
}

}  // namespace suite
