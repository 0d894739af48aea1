// Code pages 1252 (as the system's, so numbers 0, 1 and 1252) and UTF-8, by ICU. Any other number fails, as an
// uninstalled one does. Like the platform: lengths are explicit or end at a terminator that is converted too; a buffer
// that is too small is an error; bytes that are no UTF-8 become U+FFFD, or an error with MB_ERR_INVALID_CHARS; what
// 1252 lacks becomes the letter that ICU's table has for it or "?". Unlike it: wide text is UTF-32, that table has
// letters for the wide forms alone, and the comparison is of terminated texts without their letter case.

#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <windows.h>

#include <cstring>
#include <cwchar>
#include <locale>

#include "Handles.h"

// The C++ library turns wide paths into bytes by this facet of the classic locale, which knows ASCII alone. On the
// platform every wide path is good; defined here, the facet does the same in UTF-8.
std::codecvt<wchar_t, char, std::mbstate_t>::codecvt(std::size_t references)
    : __codecvt_abstract_base(references), _M_c_locale_codecvt(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}

namespace {

icu::LocalUConverterPointer Opened(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    icu::LocalUConverterPointer converter(ucnv_open(name, &error));
    ucnv_setSubstChars(converter.getAlias(), "?", 1, &error);
    ucnv_setFallback(converter.getAlias(), true);
    return converter;
}

// Null for a code page that is not installed. A converter has a state, so each thread has its own.
UConverter* ConverterOf(UINT codePage) {
    thread_local const icu::LocalUConverterPointer western = Opened("windows-1252");
    thread_local const icu::LocalUConverterPointer utf8 = Opened("UTF-8");
    const bool isWestern = codePage == CP_ACP || codePage == 1 || codePage == 1252;
    return isWestern ? western.getAlias() : codePage == CP_UTF8 ? utf8.getAlias() : nullptr;
}

// Capacity 0 asks for the length.
int Answer(int length, int capacity) {
    return capacity == 0 || length <= capacity ? length : Refuse(ERROR_INSUFFICIENT_BUFFER);
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* text, int bytes, wchar_t* wide, int capacity) {
    UConverter* const converter = ConverterOf(codePage);
    if (converter == nullptr || text == nullptr || bytes == 0 || capacity < 0) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    UErrorCode error = U_ZERO_ERROR;
    const auto onInvalid =
        (flags & MB_ERR_INVALID_CHARS) != 0 ? UCNV_TO_U_CALLBACK_STOP : UCNV_TO_U_CALLBACK_SUBSTITUTE;
    ucnv_setToUCallBack(converter, onInvalid, nullptr, nullptr, nullptr, &error);
    const int length = bytes < 0 ? static_cast<int>(std::strlen(text)) + 1 : bytes;
    const icu::UnicodeString decoded(text, length, converter, error);
    if (U_FAILURE(error)) {
        return Refuse(ERROR_NO_UNICODE_TRANSLATION);
    }
    return Answer(decoded.toUTF32(reinterpret_cast<UChar32*>(wide), capacity, error), capacity);
}

int WideCharToMultiByte(UINT codePage, DWORD, const wchar_t* wide, int characters, char* text, int capacity,
                        const char*, BOOL*) {
    UConverter* const converter = ConverterOf(codePage);
    if (converter == nullptr || wide == nullptr || characters == 0 || capacity < 0) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    const auto count = characters < 0 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(characters);
    static_assert(sizeof(wchar_t) == sizeof(UChar32));
    const auto whole =
        icu::UnicodeString::fromUTF32(reinterpret_cast<const UChar32*>(wide), static_cast<int32_t>(count));
    UErrorCode error = U_ZERO_ERROR;
    return Answer(whole.extract(text, capacity, converter, error), capacity);
}

int CompareStringOrdinal(LPCWSTR left, int, LPCWSTR right, int, BOOL) {
    static const locale_t everyLetter = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const int order = wcscasecmp_l(left, right, everyLetter);
    return order < 0 ? CSTR_LESS_THAN : order > 0 ? CSTR_GREATER_THAN : CSTR_EQUAL;
}
