// Code pages 1252 (as the system's, so numbers 0, 1 and 1252) and UTF-8. Any other number fails, as an uninstalled one
// does. Like the platform: lengths are explicit or end at a terminator that is converted too; a buffer that is too
// small is an error; bytes that are no UTF-8 become U+FFFD, or an error with MB_ERR_INVALID_CHARS; what 1252 lacks
// becomes its base letter or "?". Unlike it: wide text is UTF-32.

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <locale>
#include <string>

#include "WideText.h"

// The C++ library turns wide paths into bytes by this facet of the classic locale, which knows ASCII alone. On the
// platform every wide path is good; defined here, the facet does the same in UTF-8.
std::codecvt<wchar_t, char, std::mbstate_t>::codecvt(std::size_t references)
    : __codecvt_abstract_base(references), _M_c_locale_codecvt(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The characters of bytes 0x80 to 0x9F; bytes without one are the control characters of their number.
constexpr char32_t kHighControls[] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

// The base letters of U+0100 to U+017F, which the platform takes for letters that 1252 lacks.
constexpr char kBaseLetters[] =
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi??JjKk?LlLlLl??LlNnNnNn???OoOoOo??"
    "RrRrRrSsSsSsSsTtTtTtUuUuUuUuUuUu"
    "WwYyYZzZzZz?";
static_assert(sizeof(kBaseLetters) == 129);

bool IsWestern(UINT codePage) {
    return codePage == CP_ACP || codePage == 1 || codePage == 1252;
}

char32_t FromWestern(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80] : byte;
}

unsigned char ToWestern(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<unsigned char>(character);
    }
    for (unsigned index = 0; index < 32; ++index) {
        if (kHighControls[index] == character) {
            return static_cast<unsigned char>(0x80 + index);
        }
    }
    return character >= 0x100 && character < 0x180 ? static_cast<unsigned char>(kBaseLetters[character - 0x100]) : '?';
}

bool IsScalar(char32_t character) {
    return character < 0xD800 || (character > 0xDFFF && character < 0x110000);
}

// One character from the front of the bytes; an ill-formed sequence is one replacement for its longest beginning that
// could have become a character.
char32_t TakeUtf8(const unsigned char*& at, const unsigned char* end, bool& valid) {
    const unsigned char lead = *at++;
    if (lead < 0x80) {
        return lead;
    }
    const int more = lead >= 0xC2 && lead < 0xE0   ? 1
                     : lead >= 0xE0 && lead < 0xF0 ? 2
                     : lead >= 0xF0 && lead < 0xF5 ? 3
                                                   : 0;
    unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t character = lead & (0x3F >> more);
    for (int index = 0; index < more && at != end && *at >= lowest && *at <= highest; ++index) {
        character = (character << 6) | (*at++ & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
        if (index + 1 == more) {
            return character;
        }
    }
    valid = false;
    return kReplacement;
}

std::u32string Decoded(UINT codePage, const unsigned char* text, std::size_t bytes, bool& valid) {
    std::u32string wide;
    for (const unsigned char *at = text, *const end = text + bytes; at != end;) {
        wide += IsWestern(codePage) ? FromWestern(*at++) : TakeUtf8(at, end, valid);
    }
    return wide;
}

void AppendUtf8(std::string& text, char32_t character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
        return;
    }
    const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    text += static_cast<char>((0xF0U << (3 - more)) | (character >> (6 * more)));
    for (int index = more - 1; index >= 0; --index) {
        text += static_cast<char>(0x80 | ((character >> (6 * index)) & 0x3F));
    }
}

std::string Encoded(UINT codePage, const wchar_t* wide, std::size_t characters) {
    std::string text;
    for (std::size_t index = 0; index < characters; ++index) {
        const auto character = static_cast<char32_t>(wide[index]);
        if (IsWestern(codePage)) {
            text += static_cast<char>(ToWestern(character));
        } else {
            AppendUtf8(text, IsScalar(character) ? character : kReplacement);
        }
    }
    return text;
}

int Fail(DWORD error) {
    SetLastError(error);
    return 0;
}

template <typename Text, typename Character>
int HandOut(const Text& result, Character* buffer, int capacity) {
    const int length = static_cast<int>(result.size());
    if (capacity == 0) {
        return length;
    }
    if (length > capacity) {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    for (int index = 0; index < length; ++index) {
        buffer[index] = static_cast<Character>(result[static_cast<std::size_t>(index)]);
    }
    return length;
}

}  // namespace

UINT GetACP() {
    return 1252;
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* text, int bytes, wchar_t* wide, int capacity) {
    if ((!IsWestern(codePage) && codePage != CP_UTF8) || text == nullptr || bytes == 0 || capacity < 0) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const std::size_t length = bytes < 0 ? std::char_traits<char>::length(text) + 1 : static_cast<std::size_t>(bytes);
    bool valid = true;
    const std::u32string decoded = Decoded(codePage, reinterpret_cast<const unsigned char*>(text), length, valid);
    if (!valid && (flags & MB_ERR_INVALID_CHARS) != 0) {
        return Fail(ERROR_NO_UNICODE_TRANSLATION);
    }
    return HandOut(decoded, wide, capacity);
}

int WideCharToMultiByte(UINT codePage, DWORD, const wchar_t* wide, int characters, char* text, int capacity,
                        const char*, BOOL*) {
    if ((!IsWestern(codePage) && codePage != CP_UTF8) || wide == nullptr || characters == 0 || capacity < 0) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const std::size_t length = characters < 0 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(characters);
    return HandOut(Encoded(codePage, wide, length), text, capacity);
}

int CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength, BOOL ignoreCase) {
    static const locale_t everyLetter = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const auto text = [ignoreCase](LPCWSTR from, int length) {
        std::wstring copy = length < 0 ? std::wstring(from) : std::wstring(from, static_cast<std::size_t>(length));
        for (wchar_t& c : copy) {
            c = ignoreCase != FALSE ? static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), everyLetter)) : c;
        }
        return copy;
    };
    const int order = text(left, leftLength).compare(text(right, rightLength));
    return order < 0 ? CSTR_LESS_THAN : order > 0 ? CSTR_GREATER_THAN : CSTR_EQUAL;
}

std::string NarrowText(const wchar_t* wide) {
    return wide == nullptr ? std::string() : Encoded(CP_UTF8, wide, std::wcslen(wide));
}

std::string NarrowPath(const wchar_t* wide) {
    std::string path = NarrowText(wide);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::wstring WideText(const std::string& narrow) {
    bool valid = true;
    const std::u32string decoded =
        Decoded(CP_UTF8, reinterpret_cast<const unsigned char*>(narrow.data()), narrow.size(), valid);
    return {decoded.begin(), decoded.end()};
}
