#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>
#include <windows.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <thread>

#include "ProcessResources.h"

// A host that leaves while a request, a portrait download and a log flush run. It finds the service's entry points by
// name, as a plug-in host would: leaving-host.exe WAY ROUNDS CONFIGURATION ACCESS-TOKEN AUTHORITY-FILE LOG-FILE
//
//   return, exit-process, exit-on-thread   ends the process, with exit code 42
//   unload   unloads the service, round after round: 42 when it goes away by itself, after what ran in it
//   reload   loads, uses and unloads it with nothing left running: 42, and the levels before and after on its output
//   access-violation, terminate   crashes within a call of the service, with the token backwards for a refresh token
//
// leaving-host.exe noise makes Wine complain on its error output: the control of who listens there.

class UserAuthService;

namespace {

constexpr int kLeft = 42;

template <typename Function>
void Find(HMODULE module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(GetProcAddress(module, name));
}

// One reference to the library and the way into it.
struct Library {
    Library() : module(LoadLibraryW(L"UserAuthService.dll")) {
        Find(module, "_ZN15UserAuthService11GetInstanceEv", getInstance);
        Find(module, "_ZN15UserAuthService12SetCurrentATERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
             setToken);
        Find(module, "_ZN15UserAuthService12SetCurrentRTERKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE",
             setRefreshToken);
        Find(module, "_ZN15UserAuthService15RequestUserInfoEv", requestUserInfo);
        Find(module, "_ZN15UserAuthService27RequestUserIdFromSyncServerEv", requestUserId);
    }
    ~Library() { FreeLibrary(module); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    static bool IsLoaded() { return GetModuleHandleW(L"UserAuthService.dll") != nullptr; }
    static bool IsGoneWithin(int milliseconds) {
        for (; IsLoaded() && milliseconds > 0; milliseconds -= 10) {
            Sleep(10);
        }
        return !IsLoaded();
    }

    HMODULE module;
    UserAuthService* (*getInstance)() = nullptr;
    void (*setToken)(UserAuthService*, const std::wstring&) = nullptr;
    void (*setRefreshToken)(UserAuthService*, const std::wstring&) = nullptr;
    bool (*requestUserInfo)(UserAuthService*) = nullptr;
    bool (*requestUserId)(UserAuthService*) = nullptr;
};

int Fail(const char* reason) {
    std::fputs(reason, stderr);
    return 1;
}

void LogWithoutEnd() {
    for (;;) {
        Logger::Output(1, kSeverityFailure, __LINE__, "LeavingHost", L"a line", true);
        Logger::Flush(1000);
        Sleep(1);
    }
}

// Leaves a request, with a reference of its own, and a portrait download running. False: there is no profile.
bool StartRequests(const std::wstring& accessToken) {
    const Library library;
    library.setToken(library.getInstance(), accessToken);
    std::thread([own = std::make_unique<Library>()] { own->requestUserId(own->getInstance()); }).detach();
    return library.requestUserInfo(library.getInstance());
}

int UnloadAgainAndAgain(int rounds, const std::wstring& accessToken) {
    for (int round = 0; round < rounds; ++round) {
        if (!StartRequests(accessToken)) {
            return Fail("no profile");
        }
        if (!Library::IsGoneWithin(15000)) {
            return Fail("still loaded after what ran in it");
        }
    }
    return kLeft;
}

void PrintLevels() {
    const Resources now = Resources::Now();
    std::printf("%llu %lu %llu\n", static_cast<unsigned long long>(now.handles), now.threads,
                static_cast<unsigned long long>(now.memory / 1024));
    std::fflush(stdout);
}

int Reload(int rounds, const std::wstring& accessToken) {
    constexpr int kWarmUp = 20;
    for (int round = -kWarmUp; round < rounds; ++round) {
        if (round == 0) {
            PrintLevels();
        }
        {
            const Library library;
            library.setToken(library.getInstance(), accessToken);
            if (!library.requestUserId(library.getInstance())) {
                return Fail("no user id");
            }
        }
        if (Library::IsLoaded()) {
            return Fail("still loaded");
        }
    }
    PrintLevels();
    return kLeft;
}

DWORD WINAPI WriteNowhere(void* nowhere) {
    *static_cast<volatile int*>(nowhere) = 1;
    return 0;
}

// While a request holds the tokens, when its reply is there. Without box and debugger, which would wait for a person.
int Crash(bool byAccess, const std::wstring& accessToken) {
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { return EXCEPTION_EXECUTE_HANDLER; });
    CurlHttpLibContext::SetExchangeObserver([byAccess](const HttpExchange&) {
        Logger::Output(1, kSeverityFailure, __LINE__, "LeavingHost", L"the last line", true);
        Logger::Flush(1000);
        std::puts("crashing");
        std::fflush(stdout);
        if (byAccess) {
            // On the system's own kind of thread: this compiler's runtime takes such a fault for an exception.
            WaitForSingleObject(CreateThread(nullptr, 0, &WriteNowhere, nullptr, 0, nullptr), INFINITE);
        }
        std::terminate();
    });
    const Library library;
    library.setRefreshToken(library.getInstance(), {accessToken.rbegin(), accessToken.rend()});
    library.setToken(library.getInstance(), accessToken);
    library.requestUserId(library.getInstance());
    return Fail("still alive");
}

int MakeNoise() {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    LeaveCriticalSection(&section);
    return kLeft;
}

int Leave(const std::wstring& way) {
    Sleep(GetTickCount() % 40);  // some hosts leave while they connect, some while the replies stall
    std::puts("leaving");
    std::fflush(stdout);
    if (way == L"exit-process") {
        ExitProcess(kLeft);
    }
    if (way == L"exit-on-thread") {
        std::thread([] { ExitProcess(kLeft); }).join();
    }
    return kLeft;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count == 2) {
        return MakeNoise();
    }
    std::string error;
    if (count != 7 || !GlobalParamWrapper::GetInstance()->LoadConfiguration(arguments[3], error) ||
        !Logger::Configure({arguments[6]}, error)) {
        return Fail(("usage, configuration or log: " + error).c_str());
    }
    CurlHttpLibContext::SetDefaultCertPath(arguments[5]);
    const std::wstring way = arguments[1];
    const int rounds = std::stoi(arguments[2]);
    if (way == L"access-violation" || way == L"terminate") {
        return Crash(way == L"access-violation", arguments[4]);
    }
    if (way == L"reload") {
        return Reload(rounds, arguments[4]);
    }
    std::thread(LogWithoutEnd).detach();
    if (way == L"unload") {
        return UnloadAgainAndAgain(rounds, arguments[4]);
    }
    const Library held;  // a host that ends does not unload first
    return StartRequests(arguments[4]) ? Leave(way) : Fail("no profile");
}
