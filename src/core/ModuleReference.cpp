#include "core/ModuleReference.h"

#include <windows.h>

namespace userauth {
namespace {

// Cannot fail for an address of a loaded module.
OwnedModule ReferenceToThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&ReferenceToThisModule),
                       &module);
    return OwnedModule(module);
}

// Runs on a pool thread; the pool itself keeps the library loaded until this has returned.
void CALLBACK WaitForThread(PTP_CALLBACK_INSTANCE, void* thread) {
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

}  // namespace

ModuleReference::ModuleReference() : m_module(ReferenceToThisModule()) {}

void ModuleReference::ReleaseWhenThisThreadHasEnded() {
    HANDLE thread = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (DuplicateHandle(process, GetCurrentThread(), process, &thread, SYNCHRONIZE, FALSE, 0) == FALSE) {
        static_cast<void>(m_module.release());  // stays loaded
        return;
    }
    TP_CALLBACK_ENVIRON environment;
    InitializeThreadpoolEnvironment(&environment);
    SetThreadpoolCallbackLibrary(&environment, m_module.get());
    const BOOL submitted = TrySubmitThreadpoolCallback(WaitForThread, thread, &environment);
    DestroyThreadpoolEnvironment(&environment);
    if (submitted == FALSE) {
        CloseHandle(thread);
        static_cast<void>(m_module.release());  // stays loaded
        return;
    }
    m_module.reset();
}

}  // namespace userauth
