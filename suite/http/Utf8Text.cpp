#include "Utf8Text.h"

#include <windows.h>

#include <stdexcept>

namespace {

int CheckedLength(std::size_t length) {
    constexpr std::size_t kLimit = std::size_t{1} << 29;
    if (length > kLimit) {
        throw std::length_error("text too long to convert");
    }
    return static_cast<int>(length);
}

}  // namespace

std::string ToUtf8(const std::wstring& text) {
    const int length = CheckedLength(text.size());
    if (length == 0) {
        return {};
    }
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::wstring FromUtf8(const std::string& text) {
    const int length = CheckedLength(text.size());
    if (length == 0) {
        return {};
    }
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), size);
    return result;
}
