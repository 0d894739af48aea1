#include "OwnModule.h"

#include <windows.h>

#include <string>

namespace accountsdk {
namespace {

// Longest path that the system's wide interfaces know, in characters.
constexpr std::size_t kLongestPath = 32768;

HMODULE FindOwnModule(DWORD flags) {
    HMODULE module = nullptr;
    const auto address = reinterpret_cast<LPCWSTR>(&FindOwnModule);
    return GetModuleHandleExW(flags | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, address, &module) ? module : nullptr;
}

}  // namespace

std::filesystem::path OwnModuleFolder() {
    const HMODULE module = FindOwnModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = module ? GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())) : 0;
    path.resize(length < path.size() ? length : 0);
    return std::filesystem::path(path).parent_path();
}

HINSTANCE__* ReferenceOwnModule() {
    return FindOwnModule(0);
}

}  // namespace accountsdk
