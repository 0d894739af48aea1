#include <HttpLib.h>
#include <ParamStore.h>
#include <windows.h>
// After windows.h.
#include <winhttp.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>

#include "platform/ParameterStoreSetup.h"
#include "platform/PlatformCheck.h"
#include "steps/Steps.h"
#include "system/Folders.h"
#include "system/HostError.h"
#include "system/VersionResource.h"
#include "text/FieldText.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr wchar_t kSdk[] = L"ZVAccountSdk.dll";
constexpr wchar_t kSdkConfiguration[] = L"ZMSCoreConfig.json";

StepResult Good(const std::string& detail) {
    return {true, detail};
}

StepResult Fault(const std::string& fault, const std::string& remedy) {
    return {false, fault + ": " + remedy};
}

// Whether the libraries that were loaded are this program's own.
StepResult CheckLibraries(SessionState&) {
    for (const wchar_t* const name :
         {L"UserAuthService.dll", L"ParamStore.dll", L"HttpLib.dll", L"Logger.dll", L"EventAdmin.dll"}) {
        const std::filesystem::path file = ModuleFile(GetModuleHandleW(name));
        if (file.parent_path() != ProgramFolder()) {
            return Fault(ToUtf8(name) + " comes from " + ToUtf8(file.parent_path().wstring()),
                         "put the package's own beside userauth.exe");
        }
        const std::string version = VersionText(file, L"FileVersion");
        if (version != USERAUTH_VERSION) {
            return Fault(ToUtf8(name) + " has version " + (version.empty() ? "unknown" : version),
                         "take all files from one package, " USERAUTH_VERSION);
        }
    }
    return Good("5 DLLs of version " USERAUTH_VERSION);
}

struct ModuleFree {
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};

StepResult CheckSdk(SessionState&) {
    const std::filesystem::path file = ProgramFolder() / kSdk;
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return Fault(ToUtf8(kSdk) + " is missing", "put the platform's beside UserAuthService.dll");
    }
    // Neither its code nor what it imports runs here.
    const std::unique_ptr<HINSTANCE__, ModuleFree> sdk(
        LoadLibraryExW(file.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
    for (const char* const name : {"Init", "Uninit", "SignIn", "OpenAccountCenter", "HasAccountChanged",
                                   "RegisterNotifyFunction", "IsAccountLoggedIn", "SetLogoutEnable"}) {
        if (!sdk || !GetProcAddress(sdk.get(), name)) {
            return Fault(ToUtf8(kSdk) + (sdk ? std::string(" has no ") + name : " is no 64-bit library"),
                         "take the platform's, for 64-bit Windows");
        }
    }
    return Good(VersionText(file, L"FileDescription") + " " + VersionText(file, L"FileVersion"));
}

// Needed by the sandbox's SDK, which the environment may tell its platform. Another SDK may do without.
StepResult CheckSdkConfiguration(SessionState&) {
    const std::filesystem::path file = ProgramFolder() / kSdkConfiguration;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return Good("no " + ToUtf8(kSdkConfiguration) + " beside it: make one, with \"client_id\", if a sign-in fails");
    }
    const auto root = ParseJsonObject({std::istreambuf_iterator<char>(stream), {}});
    if (!root || TextMember(*root, "client_id").empty()) {
        return Fault(ToUtf8(kSdkConfiguration) + (root ? " has no \"client_id\"" : " is no JSON object"),
                     R"(write it as {"client_id": "..."})");
    }
    return Good("client " + TextMember(*root, "client_id"));
}

StepResult CheckConfiguration(SessionState& state) {
    try {
        if (!state.options.configuration.empty()) {
            LoadParameterStore(state.options.configuration);
        }
    } catch (const HostError& error) {
        return {false, error.what()};
    }
    if (!state.options.platformUrl.empty()) {
        PointParameterStoreTo(state.options.platformUrl, {});
    }
    state.platformUrl = ToUtf8(GlobalParamWrapper::GetInstance()->GetPortalUrl());
    return state.platformUrl.empty()
               ? Fault("no platform is named", "give --config FILE with a \"portalUrl\", or --platform URL")
               : Good("portal " + state.platformUrl);
}

// The file of authorities is read before anything is sent.
StepResult CheckCertificates(SessionState& state) {
    const std::filesystem::path& file = state.options.certificateAuthority;
    CurlHttpLibContext::SetDefaultCertPath(file.wstring());
    if (file.empty()) {
        return Good("Windows judges; --certificate-authority names a file of authorities instead");
    }
    BasicHttpLibStrategy strategy;
    strategy.SetUrl(L"https://127.0.0.1:1/");
    std::string reply;
    return CurlHttpLibContext(&strategy).Request(reply, 2) == kHttpCertificateFileInvalid
               ? Fault("the file of --certificate-authority holds no certificate", "give one in PEM form")
               : Good("the authorities in " + ToUtf8(file.wstring()));
}

// A proxy of the system's settings.
struct SystemProxy {
    bool fixed = false;
    bool script = false;  // or detection
};

SystemProxy ReadSystemProxy() {
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG settings = {};
    if (!WinHttpGetIEProxyConfigForCurrentUser(&settings)) {
        return {};
    }
    const SystemProxy proxy = {settings.lpszProxy != nullptr,
                               settings.fAutoDetect || settings.lpszAutoConfigUrl != nullptr};
    for (wchar_t* const text : {settings.lpszAutoConfigUrl, settings.lpszProxy, settings.lpszProxyBypass}) {
        GlobalFree(text);
    }
    return proxy;
}

// Names only: a proxy's URL may hold a password.
StepResult CheckProxy(SessionState&) {
    std::string variables;
    for (const char* const name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy"}) {
        const char* const value = std::getenv(name);
        variables += value && *value ? std::string(variables.empty() ? "" : ", ") + name : "";
    }
    if (!variables.empty()) {
        return Good("from the environment: " + variables);
    }
    const SystemProxy proxy = ReadSystemProxy();
    if (proxy.fixed) {
        return Good("from the system's settings");
    }
    return Good(proxy.script
                    ? "none; the system's proxy script or detection is not read: set https_proxy if it is needed"
                    : "none");
}

StepResult CheckPlatform(SessionState& state) {
    if (state.platformUrl.empty()) {
        return {false, "not asked: no platform is named"};
    }
    try {
        RequirePlatform(state.platformUrl);
    } catch (const HostError& error) {
        return {false, error.what()};
    }
    return Good("");
}

std::int64_t SecondsOf(const SYSTEMTIME& time) {
    constexpr std::int64_t kTicks = 10000000;  // of a file time
    FILETIME file = {};
    SystemTimeToFileTime(&time, &file);
    return ((static_cast<std::int64_t>(file.dwHighDateTime) << 32) | file.dwLowDateTime) / kTicks;
}

// Tokens and certificates have dates.
StepResult CheckClock(SessionState& state) {
    constexpr std::int64_t kTolerance = 120;
    const std::string date = state.platformUrl.empty() ? "" : PlatformDate(state.platformUrl);
    SYSTEMTIME platform = {};
    if (date.empty() || !WinHttpTimeToSystemTime(ToWide(date).c_str(), &platform)) {
        return Good("not compared: no platform tells its time");
    }
    SYSTEMTIME own = {};
    GetSystemTime(&own);
    const std::int64_t ahead = SecondsOf(own) - SecondsOf(platform);
    const std::string difference =
        std::to_string(std::abs(ahead)) + (ahead < 0 ? " s behind the platform's" : " s ahead of the platform's");
    return std::abs(ahead) > kTolerance ? Fault("this clock is " + difference, "set it") : Good(difference);
}

}  // namespace

std::vector<Step> DoctorSteps() {
    return {{"libraries", "libraries", CheckLibraries},
            {"account-sdk", "account SDK", CheckSdk},
            {"account-sdk-configuration", "account SDK's configuration", CheckSdkConfiguration},
            {"configuration", "configuration", CheckConfiguration},
            {"certificates", "certificates", CheckCertificates},
            {"proxy", "proxy", CheckProxy},
            {"platform", "platform reachable", CheckPlatform},
            {"clock", "clock", CheckClock}};
}

}  // namespace host
