#pragma once

#include <pwd.h>
#include <unistd.h>
#include <windows.h>

#include "WideText.h"

// The person's folders. Like the platform: the folder comes from no variable that a program may set for itself and is
// missing for a person without a home.
enum KNOWNFOLDERID { FOLDERID_LocalAppData };
constexpr DWORD KF_FLAG_DEFAULT = 0;
inline HRESULT SHGetKnownFolderPath(KNOWNFOLDERID, DWORD, HANDLE, LPWSTR* path) {
    const passwd* const person = getpwuid(getuid());
    const std::string folder = person == nullptr ? "" : "/" + std::string(person->pw_dir) + "/AppData/Local";
    *path = person == nullptr ? nullptr : wcsdup(WideText(folder).c_str());
    return person == nullptr ? E_FAIL : S_OK;
}
inline void CoTaskMemFree(void* memory) {
    LocalFree(memory);
}
