#include "system/ModuleFolder.h"

#include <windows.h>

#include <string>

namespace host {
namespace {

// Longest path that the system's wide interfaces know, in characters.
constexpr std::size_t kLongestPath = 32768;

std::filesystem::path FileOf(HMODULE module) {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

}  // namespace

std::filesystem::path ProgramFolder() {
    return FileOf(nullptr).parent_path();
}

std::filesystem::path LoadedAccountSdk() {
    const HMODULE module = GetModuleHandleW(L"ZVAccountSdk.dll");
    return module ? FileOf(module) : std::filesystem::path();
}

}  // namespace host
