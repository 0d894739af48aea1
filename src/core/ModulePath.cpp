#include "core/ModulePath.h"

#include <windows.h>

#include <algorithm>

namespace userauth {

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

}  // namespace userauth
