#pragma once

#include <windows.h>

#include <memory>

namespace host {

struct HandleClose {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};

// An owned kernel handle; null when there is none.
using WindowsHandle = std::unique_ptr<void, HandleClose>;

}  // namespace host
