// Paths as texts, the person's folders and proxy settings. Like the platform: the folder comes from no variable that a
// program may set for itself and is missing for a person without a home. Unlike it: there is never a proxy setting.

#include <shlobj.h>
#include <shlwapi.h>
#include <winhttp.h>

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <cwchar>
#include <string>

#include "WideText.h"

namespace {

wchar_t* Allocated(const std::string& text) {
    const std::wstring wide = WideText(text);
    auto* const copy = static_cast<wchar_t*>(std::malloc((wide.size() + 1) * sizeof(wchar_t)));
    return std::wmemcpy(copy, wide.c_str(), wide.size() + 1);
}

}  // namespace

BOOL PathAppendW(wchar_t* path, LPCWSTR more) {
    const std::wstring whole = std::wstring(path) + L"\\" + more;
    if (whole.size() >= MAX_PATH) {
        return FALSE;
    }
    std::wmemcpy(path, whole.c_str(), whole.size() + 1);
    return TRUE;
}

int StrCmpIW(LPCWSTR left, LPCWSTR right) {
    return wcscasecmp(left, right);
}

HRESULT SHGetKnownFolderPath(KNOWNFOLDERID, DWORD, HANDLE, LPWSTR* path) {
    const passwd* const person = getpwuid(getuid());
    *path = person == nullptr ? nullptr : Allocated(std::string("/") + person->pw_dir + "/AppData/Local");
    return person == nullptr ? E_FAIL : S_OK;
}

void CoTaskMemFree(void* memory) {
    std::free(memory);
}

HANDLE GlobalFree(void* memory) {
    std::free(memory);
    return nullptr;
}

BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG* config) {
    *config = {TRUE, nullptr, nullptr, nullptr};
    return TRUE;
}
