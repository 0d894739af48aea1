// The machine, the process and its environment, whose names have no letter case. A write to a connection or pipe that
// is closed fails and raises no signal. The numbers are those of a workstation with version 10.0 behind a version
// record that says 6.2. The firmware has no table.

#include <shellapi.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>

#include "Handles.h"
#include "SystemEntryPoints.h"
#include "WideText.h"

namespace {

[[maybe_unused]] const auto g_formerPipeSignal = std::signal(SIGPIPE, SIG_IGN);

void RtlGetNtVersionNumbers(DWORD* major, DWORD* minor, DWORD* build) {
    *major = 10;
    *minor = 0;
    *build = 0xF0000000 | 19045;
}

// The process's other threads run until it is gone.
BOOLEAN RtlDllShutdownInProgress() {
    return FALSE;
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

// The variable as it stands, "name=value"; null when there is none.
const char* EnvironmentEntry(const std::string& name) {
    char** entry = environ;
    while (*entry != nullptr && (strncasecmp(*entry, name.c_str(), name.size()) != 0 || (*entry)[name.size()] != '=')) {
        ++entry;
    }
    return *entry;
}

std::mutex g_environmentLock;

}  // namespace

FARPROC SystemEntryPoint(const char* name) {
    const struct {
        const char* name;
        FARPROC entry;
    } entries[] = {
        {"RtlDllShutdownInProgress", reinterpret_cast<FARPROC>(&RtlDllShutdownInProgress)},
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
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
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

UINT GetSystemFirmwareTable(DWORD, DWORD, void*, DWORD) {
    return 0;
}

DWORD GetEnvironmentVariableW(LPCWSTR wide, wchar_t* value, DWORD capacity) {
    const std::string name = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_environmentLock);
    const char* const entry = EnvironmentEntry(name);
    return entry == nullptr ? static_cast<DWORD>(Refuse(ERROR_ENVVAR_NOT_FOUND))
                            : HandOut(WideText(entry + name.size() + 1), value, capacity);
}

BOOL SetEnvironmentVariableW(LPCWSTR wide, LPCWSTR value) {
    const std::string name = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_environmentLock);
    if (name.empty() || name.find('=') != std::string::npos) {
        return Refuse(ERROR_INVALID_PARAMETER);
    }
    for (const char* entry = nullptr; (entry = EnvironmentEntry(name)) != nullptr;) {
        unsetenv(std::string(entry, name.size()).c_str());
    }
    return value == nullptr || setenv(name.c_str(), NarrowText(value).c_str(), 1) == 0;
}

// The arguments are asked for below, from the process itself.
LPCWSTR GetCommandLineW() {
    return L"";
}

// One block, like the platform's: pointers, then texts. The first line of /proc/self/cmdline is the program.
LPWSTR* CommandLineToArgvW(LPCWSTR, int* count) {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    const std::string texts{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    *count = static_cast<int>(std::count(texts.begin(), texts.end(), '\0'));
    const auto pointers = static_cast<std::size_t>(*count) * sizeof(LPWSTR);
    auto* const list = static_cast<LPWSTR*>(std::malloc(pointers + texts.size() * sizeof(wchar_t)));
    auto* text = reinterpret_cast<wchar_t*>(list + *count);
    for (std::size_t at = 0, index = 0; at < texts.size(); at = texts.find('\0', at) + 1, ++index) {
        const std::wstring wide = WideText(texts.c_str() + at);
        list[index] = std::wmemcpy(text, wide.c_str(), wide.size() + 1);
        text += wide.size() + 1;
    }
    return list;
}

// Ctrl-C ends the process.
BOOL SetConsoleCtrlHandler(BOOL (*)(DWORD), BOOL) {
    return TRUE;
}

void OutputDebugStringW(LPCWSTR) {}

BOOL TerminateProcess(HANDLE, UINT exitCode) {
    _exit(static_cast<int>(exitCode & 0xFF));
}

HANDLE LocalFree(void* memory) {
    std::free(memory);
    return nullptr;
}

void SecureZeroMemory(void* memory, SIZE_T bytes) {
    explicit_bzero(memory, bytes);
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
