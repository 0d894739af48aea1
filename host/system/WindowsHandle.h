#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>

#include "system/HostError.h"

namespace host {

struct HandleClose {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};

// An owned kernel handle; null when there is none.
using WindowsHandle = std::unique_ptr<void, HandleClose>;

// Opens a file that exists. Null when that fails; GetLastError tells the cause. share: what others may do meanwhile,
// FILE_SHARE_*.
inline WindowsHandle OpenFile(const std::filesystem::path& file, DWORD access, DWORD share) {
    const HANDLE handle =
        CreateFileW(file.c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return WindowsHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// Checks a call of the system. Throws HostError with kExitStepFailed, the text and GetLastError unless it was done.
inline void RequireDone(bool done, const std::string& failure) {
    if (!done) {
        throw HostError(kExitStepFailed, failure + ": system error " + std::to_string(GetLastError()));
    }
}

struct LocalMemoryFree {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

// Memory that the system allocated for its caller.
template <typename Element>
using LocalMemory = std::unique_ptr<Element, LocalMemoryFree>;

}  // namespace host
