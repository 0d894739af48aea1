#pragma once

#include <windows.h>

namespace userauth {

// What a module exports by this name, as the function type that the caller knows it to have; null when there is none.
// Compilers warn about a cast from one function type to another, hence the step between.
template <typename Function>
Function EntryPointOf(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace userauth
