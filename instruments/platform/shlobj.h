#pragma once

#include <windows.h>

enum KNOWNFOLDERID { FOLDERID_LocalAppData };
constexpr DWORD KF_FLAG_DEFAULT = 0;
HRESULT SHGetKnownFolderPath(KNOWNFOLDERID folder, DWORD flags, HANDLE token, LPWSTR* path);
inline void CoTaskMemFree(void* memory) {
    LocalFree(memory);
}
