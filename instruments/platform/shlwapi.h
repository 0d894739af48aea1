#pragma once

#include <windows.h>

#include <cwchar>

inline BOOL PathAppendW(wchar_t* path, LPCWSTR more) {
    return std::wcslen(path) + std::wcslen(more) + 1 < MAX_PATH &&
           std::wcscat(std::wcscat(path, L"\\"), more) != nullptr;
}
inline int StrCmpIW(LPCWSTR left, LPCWSTR right) {
    return CompareStringOrdinal(left, -1, right, -1, TRUE) - CSTR_EQUAL;
}
