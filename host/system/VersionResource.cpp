#include "system/VersionResource.h"

#include <windows.h>

#include <vector>

namespace host {

std::string VersionText(const std::filesystem::path& file, const wchar_t* name) {
    DWORD ignored = 0;
    std::vector<char> resource(GetFileVersionInfoSizeW(file.c_str(), &ignored));
    const auto size = static_cast<DWORD>(resource.size());
    const std::wstring key = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;  // English, Unicode
    void* text = nullptr;
    UINT length = 0;
    const bool found = size != 0 && GetFileVersionInfoW(file.c_str(), 0, size, resource.data()) &&
                       VerQueryValueW(resource.data(), key.c_str(), &text, &length);
    return found ? std::filesystem::path(static_cast<const wchar_t*>(text)).u8string() : "";
}

}  // namespace host
