#include "core/BoundedFormat.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

#include "core/InvalidParameter.h"

namespace userauth {
namespace {

// The runtime answers with the length that it would have needed, or a negative number; both mean "does not fit" here.
template <typename Character>
int Finish(Character* buffer, std::size_t capacity, int length) {
    if (length >= 0 && static_cast<std::size_t>(length) < capacity) {
        return length;
    }
    buffer[0] = Character{};
    RaiseInvalidParameter();
    return -1;
}

template <typename Character>
bool Accepts(Character* buffer, std::size_t capacity, const Character* format) {
    if (buffer != nullptr && capacity != 0 && format != nullptr) {
        return true;
    }
    if (buffer != nullptr && capacity != 0) {
        buffer[0] = Character{};
    }
    RaiseInvalidParameter();
    return false;
}

}  // namespace

int FormatString(char* buffer, std::size_t bytes, const char* format, ...) {
    if (!Accepts(buffer, bytes, format)) {
        return -1;
    }
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer, bytes, format, arguments);
    va_end(arguments);
    return Finish(buffer, bytes, length);
}

int CopyString(char* buffer, std::size_t bytes, const char* text) {
    if (!Accepts(buffer, bytes, text)) {
        return -1;
    }
    const std::size_t length = std::strlen(text);
    if (length < bytes) {
        std::memcpy(buffer, text, length + 1);
        return static_cast<int>(length);
    }
    buffer[0] = '\0';
    RaiseInvalidParameter();
    return -1;
}

int FormatWide(wchar_t (&buffer)[kWideFormatCapacity], const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = FormatWideBounded(buffer, kWideFormatCapacity, format, arguments);
    va_end(arguments);
    return length;
}

int FormatWideBounded(wchar_t* buffer, std::size_t capacity, const wchar_t* format, std::va_list arguments) {
    if (!Accepts(buffer, capacity, format)) {
        return -1;
    }
    return Finish(buffer, capacity, std::vswprintf(buffer, capacity, format, arguments));
}

}  // namespace userauth
