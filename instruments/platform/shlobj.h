#pragma once

#include <windows.h>

constexpr DWORD KF_FLAG_DEFAULT = 0;
inline bool SUCCEEDED(HRESULT result) {
    return result >= 0;
}
HRESULT SHGetKnownFolderPath(int folder, DWORD flags, HANDLE token, wchar_t** path);
