// The machine, the process and the shell. The numbers are those of a workstation with version 10.0 behind a version
// record that says 6.2. The firmware has a table only when USERAUTH_INSTRUMENT_SMBIOS names a file with one.

#include <shlwapi.h>
#include <sys/mman.h>
#include <unistd.h>

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

void OutputDebugStringW(LPCWSTR) {}

BOOL TerminateProcess(HANDLE, UINT exitCode) {
    _exit(static_cast<int>(exitCode & 0xFF));
}

HANDLE LocalFree(void* memory) {
    std::free(memory);
    return nullptr;
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
