#pragma once

#include <windows.h>

#include <cwchar>
#include <string>

inline BOOL PathAppendW(wchar_t* path, LPCWSTR more) {
    const std::wstring whole = std::wstring(path) + L"\\" + more;
    const bool fits = whole.size() < MAX_PATH;
    std::wmemcpy(path, whole.c_str(), fits ? whole.size() + 1 : 0);
    return fits;
}
inline int StrCmpIW(LPCWSTR left, LPCWSTR right) {
    return CompareStringOrdinal(left, -1, right, -1, TRUE) - CSTR_EQUAL;
}
