#include "core/Modules.h"

#include <windows.h>

#include <algorithm>

void ModuleRelease::operator()(HINSTANCE__* module) const noexcept {
    FreeLibrary(module);
}

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

std::wstring GetModuleFilePath(HINSTANCE__* module) {
    std::wstring path(MAX_PATH, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), MAX_PATH);
    // A truncated path is reported with the full capacity, its terminator included.
    path.resize(std::min<std::size_t>(length, MAX_PATH - 1));
    return path;
}

bool GetParentDirectory(const std::wstring& path, std::wstring& directory) {
    const std::size_t separator = path.find_last_of(L"\\/");
    if (separator == std::wstring::npos || separator == 0) {
        return false;
    }
    directory = path.substr(0, separator + 1);
    return true;
}

std::wstring GetCurrentModuleDirectory() {
    MEMORY_BASIC_INFORMATION memory{};
    if (VirtualQuery(reinterpret_cast<const void*>(&GetCurrentModuleDirectory), &memory, sizeof(memory)) == 0) {
        return {};
    }
    std::wstring directory;
    GetParentDirectory(GetModuleFilePath(static_cast<HMODULE>(memory.AllocationBase)), directory);
    return directory;
}

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
