// The person's folders. Like the platform: the folder comes from no variable that a program may set for itself and is
// missing for a person without a home.

#include <shlobj.h>

#include <pwd.h>
#include <unistd.h>

#include <cwchar>
#include <string>

#include "WideText.h"

HRESULT SHGetKnownFolderPath(KNOWNFOLDERID, DWORD, HANDLE, LPWSTR* path) {
    const passwd* const person = getpwuid(getuid());
    *path =
        person == nullptr ? nullptr : wcsdup(WideText("/" + std::string(person->pw_dir) + "/AppData/Local").c_str());
    return person == nullptr ? E_FAIL : S_OK;
}
