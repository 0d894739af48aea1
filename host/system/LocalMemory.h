#pragma once

#include <windows.h>

#include <memory>

namespace host {

struct LocalMemoryFree {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};

// Memory that the system allocated for its caller.
template <typename Element>
using LocalMemory = std::unique_ptr<Element, LocalMemoryFree>;

}  // namespace host
