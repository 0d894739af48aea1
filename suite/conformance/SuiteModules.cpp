#include "SuiteModules.h"

#include <psapi.h>

#include <stdexcept>
#include <vector>

namespace conformance {

namespace {

constexpr DWORD kSearch =
    LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;

std::filesystem::path FileOf(HMODULE module) {
    std::vector<wchar_t> path(32768);
    GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    return path.data();
}

HMODULE Load(const std::filesystem::path& file) {
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, kSearch);
    if (module == nullptr) {
        throw std::runtime_error(file.u8string() + ": cannot be loaded: system error " +
                                 std::to_string(GetLastError()) +
                                 " (126: it or a library that it needs is missing; 127: an entry of a library is)");
    }
    return module;
}

// A second library of the same name would take the points' calls, or the service's, without anybody seeing it.
void RequireOnce(const std::filesystem::path& file) {
    std::vector<HMODULE> modules(1024);
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), modules.data(), static_cast<DWORD>(modules.size() * sizeof(HMODULE)),
                       &bytes);
    modules.resize(std::min<std::size_t>(modules.size(), bytes / sizeof(HMODULE)));
    for (const HMODULE module : modules) {
        const std::filesystem::path loaded = FileOf(module);
        if (_wcsicmp(loaded.filename().c_str(), file.filename().c_str()) == 0 &&
            !std::filesystem::equivalent(loaded, file)) {
            throw std::runtime_error(loaded.u8string() + " was loaded beside " + file.u8string());
        }
    }
}

}  // namespace

std::filesystem::path ProgramFolder() {
    return FileOf(nullptr).parent_path();
}

std::filesystem::path LibraryFile(const std::filesystem::path& folder, const wchar_t* library) {
    const std::wstring name = std::wstring(library) + L".dll";
    return std::filesystem::exists(folder / name) ? folder / name : ProgramFolder() / name;
}

HMODULE LoadPoints(const std::filesystem::path& folder) {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    for (const wchar_t* library : kLibraries) {
        Load(LibraryFile(folder, library));
    }
    const HMODULE points = Load(ProgramFolder() / L"suite-conformance-points.dll");
    for (const wchar_t* library : kLibraries) {
        RequireOnce(LibraryFile(folder, library));
    }
    return points;
}

}  // namespace conformance
