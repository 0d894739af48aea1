// The machine, the process and its environment, whose names have their letter case. A write to a connection or pipe
// that is closed fails and raises no signal. The numbers are those of a workstation with version 10.0 behind a version
// record that says 6.2. The firmware has no table.

#include <sys/mman.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <mutex>
#include <string>

#include "Handles.h"
#include "WideText.h"

namespace {

[[maybe_unused]] const auto g_formerPipeSignal = std::signal(SIGPIPE, SIG_IGN);

// A length that fits: the text and its length; else the room that it needs.
DWORD HandOut(const std::wstring& text, wchar_t* buffer, DWORD capacity) {
    if (text.size() >= capacity) {
        return static_cast<DWORD>(text.size() + 1);
    }
    std::wmemcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

std::atomic<_invalid_parameter_handler> g_handler{nullptr};
std::mutex g_environmentLock;

}  // namespace

// ---- What is asked for by name: the program exports it (Modules.cpp).
extern "C" void RtlGetNtVersionNumbers(DWORD* major, DWORD* minor, DWORD* build) {
    *major = 10;
    *minor = 0;
    *build = 0xF0000000 | 19045;
}

// The process's other threads run until it is gone.
extern "C" BOOLEAN RtlDllShutdownInProgress() {
    return FALSE;
}

UINT GetSystemFirmwareTable(DWORD, DWORD, void*, DWORD) {
    return 0;
}

BOOL GetVersionExW(OSVERSIONINFOW* version) {
    if (version->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXW)) {
        return Refuse(ERROR_INSUFFICIENT_BUFFER);
    }
    auto* const record = static_cast<OSVERSIONINFOEXW*>(version);
    *record = {{sizeof(OSVERSIONINFOEXW), 6, 2, 9200, 2, {}}, 0, 0, 0, 1, 0};
    return TRUE;
}

UINT GetSystemDirectoryW(wchar_t* path, UINT capacity) {
    return HandOut(L"C:\\windows\\system32", path, capacity);
}

DWORD GetEnvironmentVariableW(LPCWSTR name, wchar_t* value, DWORD capacity) {
    const std::lock_guard<std::mutex> hold(g_environmentLock);
    const char* const text = std::getenv(NarrowText(name).c_str());
    return text != nullptr ? HandOut(WideText(text), value, capacity)
                           : static_cast<DWORD>(Refuse(ERROR_ENVVAR_NOT_FOUND));
}

BOOL SetEnvironmentVariableW(LPCWSTR wide, LPCWSTR value) {
    const std::string name = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_environmentLock);
    const int error = value == nullptr ? unsetenv(name.c_str()) : setenv(name.c_str(), NarrowText(value).c_str(), 1);
    return error == 0 || Refuse(ERROR_INVALID_PARAMETER);
}

DWORD GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

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

// Reserved first, then committed once, which empties it.
void* VirtualAlloc(void* address, SIZE_T bytes, DWORD type, DWORD) {
    const int protection = type == MEM_COMMIT ? PROT_READ | PROT_WRITE : PROT_NONE;
    const int place = type == MEM_COMMIT ? MAP_FIXED : 0;
    void* const memory = mmap(address, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS | place, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

_invalid_parameter_handler _get_invalid_parameter_handler() {
    return g_handler;
}

_invalid_parameter_handler _set_invalid_parameter_handler(_invalid_parameter_handler handler) {
    return g_handler.exchange(handler);
}
