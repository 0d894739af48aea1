#pragma once

#include <windows.h>

#include <memory>

namespace host {

struct HandleClose {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};

// An owned kernel handle; null when there is none.
using WindowsHandle = std::unique_ptr<void, HandleClose>;

struct LocalMemoryFree {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

// Memory that the system allocated for its caller.
template <typename Element>
using LocalMemory = std::unique_ptr<Element, LocalMemoryFree>;

}  // namespace host
