#include "ProcessState.h"

#include <windows.h>

namespace suite {

void PinThisModule() noexcept {
    static const char anchor = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<LPCWSTR>(&anchor), &module);
}

bool ProcessIsEnding() noexcept {
    // Exported by ntdll for exactly this question, but in no import library.
    using ShutdownInProgress = BOOLEAN(NTAPI*)();
    // Compilers warn about a cast from one function type to another, hence the step between.
    static const auto shutdownInProgress = reinterpret_cast<ShutdownInProgress>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return shutdownInProgress != nullptr && shutdownInProgress() != 0;
}

}  // namespace suite
