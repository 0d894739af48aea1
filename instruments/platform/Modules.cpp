// Modules by dlopen. Like the platform: a module's handle is its base address, LoadLibraryW and FreeLibrary count, a
// pinned module stays, a name finds only what is loaded. "kernel32" and "ntdll.dll" are always there and answer for the
// few entry points that are asked for by name. Unlike it: a module that was loaded stays mapped while something else
// uses it, and search paths are not followed, so a name without a folder is never loaded.

#include <dlfcn.h>
#include <link.h>
#include <windows.h>

#include <climits>
#include <map>
#include <mutex>
#include <string>

#include "SystemEntryPoints.h"
#include "WideText.h"

namespace {

struct Loaded {
    std::string path;
    void* native;
    int references;
    bool pinned;
};

std::mutex g_lock;
std::map<HMODULE, Loaded>& Modules() {
    static auto* const modules = new std::map<HMODULE, Loaded>;
    return *modules;
}

std::string LowerCase(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return text;
}

std::string BaseName(const std::string& path) {
    return LowerCase(path.substr(path.rfind('/') + 1));
}

// The platform's own modules are this address; their names do not matter to those who ask.
HMODULE SystemModule() {
    static char anchor;
    return reinterpret_cast<HMODULE>(&anchor);
}

bool IsSystemName(const std::string& name) {
    return name == "kernel32" || name == "kernel32.dll" || name == "ntdll" || name == "ntdll.dll";
}

HMODULE BaseOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) == 0 ? nullptr : static_cast<HMODULE>(info.dli_fbase);
}

HMODULE ProgramModule() {
    static const int anchor = 0;
    return BaseOf(&anchor);
}

HMODULE NotFound(DWORD error) {
    SetLastError(error);
    return nullptr;
}

// With the lock held.
HMODULE ByName(const std::string& name) {
    for (const auto& [handle, module] : Modules()) {
        if (BaseName(module.path) == name) {
            return handle;
        }
    }
    return NotFound(ERROR_MOD_NOT_FOUND);
}

}  // namespace

HMODULE LoadLibraryW(LPCWSTR wide) {
    const std::string path = NarrowPath(wide);
    if (IsSystemName(BaseName(path))) {
        return SystemModule();
    }
    void* const native = path.find('/') == std::string::npos ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (native == nullptr) {
        return NotFound(ERROR_MOD_NOT_FOUND);
    }
    link_map* map = nullptr;
    dlinfo(native, RTLD_DI_LINKMAP, &map);
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto handle = reinterpret_cast<HMODULE>(map->l_addr);
    Loaded& module = Modules().try_emplace(handle, Loaded{path, native, 0, false}).first->second;
    if (module.references++ > 0) {
        dlclose(native);  // one native reference for all
    }
    return handle;
}

BOOL FreeLibrary(HMODULE handle) {
    std::unique_lock<std::mutex> hold(g_lock);
    const auto found = Modules().find(handle);
    if (found == Modules().end()) {
        return handle != nullptr;  // the program itself and the system's modules stay
    }
    if (--found->second.references > 0 || found->second.pinned) {
        return TRUE;
    }
    void* const native = found->second.native;
    Modules().erase(found);
    hold.unlock();  // the module's own destructors run now
    dlclose(native);
    return TRUE;
}

FARPROC GetProcAddress(HMODULE handle, const char* name) {
    if (handle == SystemModule()) {
        return SystemEntryPoint(name);
    }
    std::unique_lock<std::mutex> hold(g_lock);
    const auto found = Modules().find(handle);
    void* const native = found == Modules().end() ? RTLD_DEFAULT : found->second.native;
    hold.unlock();
    return reinterpret_cast<FARPROC>(dlsym(native, name));
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    if (name == nullptr) {
        return ProgramModule();
    }
    const std::string base = BaseName(NarrowPath(name));
    const std::lock_guard<std::mutex> hold(g_lock);
    return IsSystemName(base) ? SystemModule() : ByName(base);
}

BOOL GetModuleHandleExW(DWORD flags, LPCWSTR nameOrAddress, HMODULE* handle) {
    *handle =
        (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) != 0 ? BaseOf(nameOrAddress) : GetModuleHandleW(nameOrAddress);
    const std::lock_guard<std::mutex> hold(g_lock);
    const auto found = Modules().find(*handle);
    if (found != Modules().end() && (flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT) == 0) {
        found->second.references += 1;
        found->second.pinned = found->second.pinned || (flags & GET_MODULE_HANDLE_EX_FLAG_PIN) != 0;
    }
    return *handle != nullptr;
}

DWORD GetModuleFileNameW(HMODULE handle, wchar_t* path, DWORD capacity) {
    char program[PATH_MAX] = {};
    std::string narrow;
    {
        const std::lock_guard<std::mutex> hold(g_lock);
        const auto found = Modules().find(handle);
        narrow = found != Modules().end()                         ? found->second.path
                 : realpath("/proc/self/exe", program) != nullptr ? program
                                                                  : "";
    }
    const std::wstring whole = WideText(narrow);
    const bool fits = whole.size() < capacity;
    const std::size_t length = fits ? whole.size() : capacity - 1;
    whole.copy(path, length);
    path[length] = L'\0';
    SetLastError(fits ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER);
    return fits ? static_cast<DWORD>(length) : capacity;
}

SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* memory, SIZE_T) {
    memory->AllocationBase = BaseOf(address);
    return memory->AllocationBase == nullptr ? 0 : sizeof(*memory);
}

void* AddDllDirectory(LPCWSTR folder) {
    return folder == nullptr || folder[0] == L'\0' ? NotFound(ERROR_INVALID_PARAMETER) : SystemModule();
}
