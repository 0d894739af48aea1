#include <HttpLib.h>
#include <ParamStore.h>
#include <windows.h>

#include <cstdio>
#include <string>

// A host that leaves while a portrait download runs: leaving-host.exe WAY CONFIGURATION ACCESS-TOKEN AUTHORITY-FILE. It
// loads the service as a plug-in host would, finding its entry points by name.
//
//   return, exit-process   ends the process, with exit code 42
//   unload                 unloads the service: 42 when it stays loaded while the download runs and goes away
//                          afterwards

class UserAuthService;

namespace {

HMODULE g_module = nullptr;

template <typename Function>
Function Entry(const char* name) {
    return reinterpret_cast<Function>(GetProcAddress(g_module, name));
}

bool IsLoaded() { return GetModuleHandleW(L"UserAuthService.dll") != nullptr; }

int Fail(const char* reason) {
    std::fputs(reason, stderr);
    return 1;
}

int UnloadDuringDownload() {
    FreeLibrary(g_module);
    if (!IsLoaded()) {
        return Fail("unloaded under the running download");
    }
    for (int tenths = 0; tenths < 150; ++tenths) {
        if (!IsLoaded()) {
            return 42;
        }
        Sleep(100);
    }
    return Fail("still loaded after the download");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    std::string error;
    if (count != 5 || !GlobalParamWrapper::GetInstance()->LoadConfiguration(arguments[2], error)) {
        return Fail(("usage or configuration: " + error).c_str());
    }
    CurlHttpLibContext::SetDefaultCertPath(arguments[4]);
    g_module = LoadLibraryW(L"UserAuthService.dll");
    const auto getInstance = Entry<UserAuthService* (*)()>("_ZN15UserAuthService11GetInstanceEv");
    const auto setToken = Entry<void (*)(UserAuthService*, const std::wstring&)>(
        "_ZN15UserAuthService12SetCurrentATERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE");
    const auto requestUserInfo = Entry<bool (*)(UserAuthService*)>("_ZN15UserAuthService15RequestUserInfoEv");
    if (getInstance == nullptr || setToken == nullptr || requestUserInfo == nullptr) {
        return Fail("the service or one of its entry points is missing");
    }
    UserAuthService* const service = getInstance();
    setToken(service, arguments[3]);
    if (!requestUserInfo(service)) {
        return Fail("no profile");
    }
    Sleep(20);  // some hosts leave while the download connects, some while it stalls
    std::puts("leaving");
    std::fflush(stdout);
    const std::wstring way = arguments[1];
    if (way == L"unload") {
        return UnloadDuringDownload();
    }
    if (way == L"exit-process") {
        ExitProcess(42);
    }
    return 42;
}
