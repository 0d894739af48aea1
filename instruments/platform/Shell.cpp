// Paths as texts, the person's folders and proxy settings. Like the platform: patterns are separated by semicolons and
// blind to letter case, "*.*" matches every name, the folder comes from no variable that a program may set for itself
// and is missing for a person without a home. Unlike it: the proxy settings are the texts of USERAUTH_INSTRUMENT_PROXY
// and USERAUTH_INSTRUMENT_BYPASS, none without them.

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

wchar_t* Setting(const char* variable) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? nullptr : Allocated(value);
}

bool Matches(const wchar_t* name, const wchar_t* pattern, const wchar_t* end) {
    if (pattern == end) {
        return *name == L'\0';
    }
    if (*pattern == L'*') {
        return Matches(name, pattern + 1, end) || (*name != L'\0' && Matches(name + 1, pattern, end));
    }
    return *name != L'\0' && (*pattern == L'?' || wcsncasecmp(name, pattern, 1) == 0) &&
           Matches(name + 1, pattern + 1, end);
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

BOOL PathMatchSpecW(LPCWSTR name, LPCWSTR patterns) {
    for (const wchar_t* at = patterns; *at != L'\0';) {
        at += std::wcsspn(at, L" ");
        const wchar_t* const end = at + std::wcscspn(at, L";");
        if (std::wstring(at, end) == L"*.*" || Matches(name, at, end)) {
            return TRUE;
        }
        at = end + (*end == L';' ? 1 : 0);
    }
    return FALSE;
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
    *config = {TRUE, nullptr, Setting("USERAUTH_INSTRUMENT_PROXY"), Setting("USERAUTH_INSTRUMENT_BYPASS")};
    return TRUE;
}
