#include "LocalFolders.h"

#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <memory>

namespace suite {
namespace {

struct TaskMemoryRelease {
    void operator()(wchar_t* memory) const noexcept { CoTaskMemFree(memory); }
};

std::wstring EnvironmentText(const wchar_t* name) {
    const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    std::wstring value(size, L'\0');
    const DWORD length = size == 0 ? 0 : GetEnvironmentVariableW(name, value.data(), size);
    value.resize(length < size ? length : 0);  // another thread may have made it longer meanwhile
    return value;
}

std::wstring FindLocalAppDataFolder() {
    wchar_t* path = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_DEFAULT, nullptr, &path);
    const std::unique_ptr<wchar_t, TaskMemoryRelease> owner(path);  // to be released after a failure too
    std::wstring folder = SUCCEEDED(result) && path != nullptr ? std::wstring(path) : EnvironmentText(L"LOCALAPPDATA");
    while (!folder.empty() && (folder.back() == L'\\' || folder.back() == L'/')) {
        folder.pop_back();
    }
    return folder;
}

}  // namespace

std::wstring LocalAppDataFolder() {
    static const std::wstring folder = FindLocalAppDataFolder();
    return folder;
}

}  // namespace suite
