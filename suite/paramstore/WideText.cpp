#include "WideText.h"

#include <windows.h>

// The platform's lengths are int; the callers' texts are file paths and settings of at most a mebibyte.

std::optional<std::wstring> WideFromUtf8(std::string_view text) {
    if (text.empty()) {
        return std::wstring();
    }
    const int bytes = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, nullptr, 0);
    if (length <= 0) {
        return std::nullopt;
    }
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), bytes, wide.data(), length);
    return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
    if (text.empty()) {
        return std::string();
    }
    const int units = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string bytes(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data(), length, nullptr, nullptr);
    return bytes;
}
