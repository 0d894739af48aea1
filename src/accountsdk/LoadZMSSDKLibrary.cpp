#include <windows.h>

#include "UserAuthService.h"
#include "core/BoundedFormat.h"
#include "core/ModulePath.h"
#include "core/ServiceLog.h"

namespace {

constexpr char kTag[] = "UserAuthService::LoadZMSSDKLibrary";

template <typename EntryPoint>
void Resolve(HMODULE module, const char* name, EntryPoint& entryPoint) {
    entryPoint = reinterpret_cast<EntryPoint>(GetProcAddress(module, name));
}

void ResolveAll(HMODULE module, AccountSdkEntryPoints& sdk) {
    Resolve(module, "Init", sdk.init);
    Resolve(module, "Uninit", sdk.uninit);
    Resolve(module, "SignIn", sdk.signIn);
    Resolve(module, "OpenAccountCenter", sdk.openAccountCenter);
    Resolve(module, "HasAccountChanged", sdk.hasAccountChanged);
    Resolve(module, "RegisterNotifyFunction", sdk.registerNotifyFunction);
    Resolve(module, "IsSupportAccount", sdk.isSupportAccount);
    Resolve(module, "GetOAuthDomain", sdk.getOAuthDomain);
    Resolve(module, "IsAccountLoggedIn", sdk.isAccountLoggedIn);
    Resolve(module, "SetLogoutEnable", sdk.setLogoutEnable);
}

void ReportLoadFailure(DWORD error) {
    wchar_t text[userauth::kWideFormatCapacity] = {};
    userauth::FormatWide(text, L"dwError = %d \r\n", static_cast<int>(error));
    MessageBoxW(nullptr, text, L"Load ZMS SDK Failed", MB_OK | MB_ICONERROR);
    userauth::WriteLog(kSeverityFailure, __LINE__, kTag, L"Error: Load ZMS SDK library failed!");
}

}  // namespace

void ModuleRelease::operator()(HINSTANCE__* module) const noexcept {
    FreeLibrary(module);
}

bool UserAuthService::LoadZMSSDKLibrary() {
    const std::wstring directory = userauth::GetCurrentModuleDirectory();
    // Not checked: the full path below finds the SDK without it; this is for the SDK's own dependencies.
    AddDllDirectory(directory.c_str());
    m_hSdkModule.reset(LoadLibraryW((directory + L"ZVAccountSdk.dll").c_str()));
    if (m_hSdkModule == nullptr) {
        ReportLoadFailure(GetLastError());
        return false;
    }
    ResolveAll(m_hSdkModule.get(), m_sdk);
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"Load ZMS SDK library successed!");
    return true;
}
