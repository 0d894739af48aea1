// Modules by this machine's loader. Like the platform: a module's handle is its base address, loading and freeing
// count, a pinned module stays, a name finds only what is loaded. "kernel32" and "ntdll.dll" are the program itself,
// which exports the few entry points that are asked for by name. Unlike it: a module that was loaded stays mapped while
// something else uses it, letter case counts, and search paths are not followed, so a name without a folder is never
// loaded.

#include <dlfcn.h>
#include <link.h>
#include <windows.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "Handles.h"
#include "WideText.h"

namespace {

HMODULE BaseOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) == 0 ? nullptr : static_cast<HMODULE>(info.dli_fbase);
}

// What the loader knows of the module around an address, its base among them; null when there is none. It is what
// dlopen gives out in this machine's C library.
link_map* RecordOf(const void* address) {
    Dl_info info{};
    void* record = nullptr;
    dladdr1(address, &info, &record, RTLD_DL_LINKMAP);
    return static_cast<link_map*>(record);
}

std::string BaseName(const std::string& path) {
    return path.substr(path.find_last_of("\\/") + 1);
}

bool IsSystemName(const std::string& name) {
    return name == "kernel32" || name == "ntdll.dll";
}

struct Search {
    std::string name;
    HMODULE found;
};

int Compare(dl_phdr_info* module, std::size_t, void* data) {
    auto* const search = static_cast<Search*>(data);
    search->found = reinterpret_cast<HMODULE>(module->dlpi_addr);
    return BaseName(module->dlpi_name) == search->name ? 1 : 0;
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR wide) {
    const std::string path = NarrowText(wide);
    const bool hasFolder = path.find('/') != std::string::npos;
    const int flags = RTLD_NOW | RTLD_LOCAL | (hasFolder ? 0 : RTLD_NOLOAD);
    const bool isSystem = IsSystemName(BaseName(path));
    const auto* const record = static_cast<link_map*>(dlopen(isSystem ? nullptr : path.c_str(), flags));
    return record == nullptr ? (SetLastError(ERROR_MOD_NOT_FOUND), nullptr) : BaseOf(record->l_ld);
}

BOOL FreeLibrary(HMODULE module) {
    link_map* const record = RecordOf(module);
    return record != nullptr && dlclose(record) == 0;
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    return reinterpret_cast<FARPROC>(dlsym(RecordOf(module), name));
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    static const char ofTheProgram = 0;
    Search search{name == nullptr ? "kernel32" : NarrowText(name), nullptr};
    if (IsSystemName(search.name)) {
        return BaseOf(&ofTheProgram);
    }
    return dl_iterate_phdr(Compare, &search) != 0 ? search.found : (SetLastError(ERROR_MOD_NOT_FOUND), nullptr);
}

// By address alone.
BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module) {
    const link_map* const record = RecordOf(address);
    *module = BaseOf(address);
    if (record == nullptr || (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) == 0) {
        return Refuse(ERROR_MOD_NOT_FOUND);
    }
    if ((flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT) == 0) {
        const int pin = (flags & GET_MODULE_HANDLE_EX_FLAG_PIN) != 0 ? RTLD_NODELETE : 0;
        dlopen(record->l_name, RTLD_LAZY | RTLD_NOLOAD | pin);
    }
    return TRUE;
}

DWORD GetModuleFileNameW(HMODULE module, wchar_t* path, DWORD capacity) {
    const link_map* const record = RecordOf(module);
    char program[PATH_MAX] = {};
    const bool isProgram = record == nullptr || record->l_name[0] == '\0';
    const std::wstring whole = WideText(isProgram ? realpath("/proc/self/exe", program) : record->l_name);
    const bool fits = whole.size() < capacity;
    path[whole.copy(path, capacity - 1)] = L'\0';
    SetLastError(fits ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER);
    return fits ? static_cast<DWORD>(whole.size()) : capacity;
}

SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* memory, SIZE_T) {
    memory->AllocationBase = BaseOf(address);
    return memory->AllocationBase == nullptr ? 0 : sizeof(*memory);
}
