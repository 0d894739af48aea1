#pragma once

#include <cstdarg>
#include <cstddef>

#if defined(__MINGW32__) && !defined(__clang__)
#define USERAUTH_PRINTF_LIKE __attribute__((format(gnu_printf, 3, 4)))
#elif defined(__GNUC__)
#define USERAUTH_PRINTF_LIKE __attribute__((format(printf, 3, 4)))
#else
#define USERAUTH_PRINTF_LIKE
#endif

namespace userauth {

inline constexpr std::size_t kWideFormatCapacity = 256;

// Bounded printf-style formatting with the behaviour that is documented for vsprintf_s, under any C runtime: a text
// that does not fit with its terminator, or a null argument, empties the buffer and raises the invalid-parameter
// condition (InvalidParameter.h). The wide forms take integer conversions only: runtimes disagree about "%s" there.
// Return the number of characters written without the terminator, or -1.
int FormatString(char* buffer, std::size_t bytes, const char* format, ...) USERAUTH_PRINTF_LIKE;
int FormatWide(wchar_t (&buffer)[kWideFormatCapacity], const wchar_t* format, ...);

// What FormatString does with "%s", without a formatter's cost; the text's length must fit an int.
int CopyString(char* buffer, std::size_t bytes, const char* text);

// The wide form for a buffer of any capacity, in characters.
int FormatWideBounded(wchar_t* buffer, std::size_t capacity, const wchar_t* format, std::va_list arguments);

}  // namespace userauth
