// The machine, the process and the shell. The numbers are those of a workstation with version 10.0 behind a version record
// that says 6.2. The firmware has a table only when USERAUTH_INSTRUMENT_SMBIOS names a file with one. There is no system
// proxy.

#include <fnmatch.h>
#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <sys/mman.h>
#include <unistd.h>
#include <winhttp.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <string>

#include "SystemEntryPoints.h"
#include "WideText.h"

namespace {

void RtlGetNtVersionNumbers(DWORD* major, DWORD* minor, DWORD* build) {
    *major = 10;
    *minor = 0;
    *build = 0xF0000000 | 19045;
}

BOOLEAN RtlDllShutdownInProgress() {
    return FALSE;
}

std::string LowerCase(const wchar_t* wide, std::size_t length) {
    std::string text = NarrowText(std::wstring(wide, length).c_str());
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return text;
}

// A length that fits: the text and its length; else the room that it needs.
DWORD HandOut(const std::wstring& text, wchar_t* buffer, DWORD capacity) {
    if (text.size() >= capacity) {
        return static_cast<DWORD>(text.size() + 1);
    }
    std::wmemcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

std::atomic<_invalid_parameter_handler> g_handler{nullptr};

}  // namespace

FARPROC SystemEntryPoint(const char* name) {
    const struct {
        const char* name;
        FARPROC entry;
    } entries[] = {
        {"RtlGetNtVersionNumbers", reinterpret_cast<FARPROC>(&RtlGetNtVersionNumbers)},
        {"RtlDllShutdownInProgress", reinterpret_cast<FARPROC>(&RtlDllShutdownInProgress)},
        {"GetSystemFirmwareTable", reinterpret_cast<FARPROC>(&GetSystemFirmwareTable)},
    };
    for (const auto& entry : entries) {
        if (std::strcmp(entry.name, name) == 0) {
            return entry.entry;
        }
    }
    return nullptr;
}

BOOL GetVersionExW(OSVERSIONINFOW* version) {
    if (version->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXW)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    OSVERSIONINFOEXW record{};
    record.dwOSVersionInfoSize = sizeof(record);
    record.dwMajorVersion = 6;
    record.dwMinorVersion = 2;
    record.dwBuildNumber = 9200;
    record.dwPlatformId = 2;
    record.wProductType = 1;
    *static_cast<OSVERSIONINFOEXW*>(version) = record;
    return TRUE;
}

void GetSystemInfo(SYSTEM_INFO* system) {
    system->wProcessorArchitecture = 9;
}

int GetSystemMetrics(int) {
    return 0;
}

UINT GetSystemDirectoryW(wchar_t* path, UINT capacity) {
    return HandOut(L"C:\\windows\\system32", path, capacity);
}

UINT GetSystemFirmwareTable(DWORD, DWORD, void* buffer, DWORD bytes) {
    const char* const path = std::getenv("USERAUTH_INSTRUMENT_SMBIOS");
    std::ifstream file(path == nullptr ? "" : path, std::ios::binary);
    const std::string table{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (table.size() <= bytes && buffer != nullptr) {
        std::memcpy(buffer, table.data(), table.size());
    }
    return static_cast<UINT>(table.size());
}

DWORD GetEnvironmentVariableW(LPCWSTR name, wchar_t* value, DWORD capacity) {
    const char* const found = std::getenv(NarrowText(name).c_str());
    if (found == nullptr) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    return HandOut(WideText(found), value, capacity);
}

BOOL SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value) {
    return value == nullptr ? unsetenv(NarrowText(name).c_str()) == 0
                            : setenv(NarrowText(name).c_str(), NarrowText(value).c_str(), 1) == 0;
}

void OutputDebugStringW(LPCWSTR) {}

BOOL TerminateProcess(HANDLE, UINT exitCode) {
    _exit(static_cast<int>(exitCode & 0xFF));
}

HANDLE LocalFree(void* memory) {
    std::free(memory);
    return nullptr;
}

void* GlobalFree(void* memory) {
    std::free(memory);
    return nullptr;
}

void CoTaskMemFree(void* memory) {
    std::free(memory);
}

void* VirtualAlloc(void* address, SIZE_T bytes, DWORD type, DWORD) {
    if (type == MEM_COMMIT) {
        return mprotect(address, bytes, PROT_READ | PROT_WRITE) == 0 ? address : nullptr;
    }
    void* const reserved = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return reserved == MAP_FAILED ? nullptr : reserved;
}

_invalid_parameter_handler _get_invalid_parameter_handler() {
    return g_handler;
}

_invalid_parameter_handler _set_invalid_parameter_handler(_invalid_parameter_handler handler) {
    return g_handler.exchange(handler);
}

BOOL PathAppendW(wchar_t* path, LPCWSTR more) {
    const std::wstring whole = std::wstring(path) + L"\\" + more;
    if (whole.size() >= MAX_PATH) {
        return FALSE;
    }
    std::wmemcpy(path, whole.c_str(), whole.size() + 1);
    return TRUE;
}

// Patterns are separated by semicolons; blanks before one do not count, nor does letter case.
BOOL PathMatchSpecW(LPCWSTR text, LPCWSTR patterns) {
    const std::string name = LowerCase(text, std::wcslen(text));
    for (const wchar_t* at = patterns; *at != L'\0';) {
        const std::size_t length = std::wcscspn(at, L";");
        const std::size_t blanks = std::wcsspn(at, L" ");
        if (blanks < length &&
            fnmatch(LowerCase(at + blanks, length - blanks).c_str(), name.c_str(), FNM_NOESCAPE) == 0) {
            return TRUE;
        }
        at += length + (at[length] == L';' ? 1 : 0);
    }
    return FALSE;
}

BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG*) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
}

HRESULT SHGetKnownFolderPath(int, DWORD, HANDLE, wchar_t** path) {
    constexpr auto kFail = static_cast<HRESULT>(0x80004005);
    const char* const folder = std::getenv("LOCALAPPDATA");
    *path = nullptr;
    if (folder == nullptr) {
        return kFail;
    }
    const std::wstring wide = WideText(folder);
    *path = static_cast<wchar_t*>(std::malloc((wide.size() + 1) * sizeof(wchar_t)));
    std::wmemcpy(*path, wide.c_str(), wide.size() + 1);
    return 0;
}
