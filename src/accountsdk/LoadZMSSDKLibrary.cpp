#include <windows.h>

#include "UserAuthService.h"
#include "core/BoundedFormat.h"
#include "core/EntryPoint.h"
#include "core/Modules.h"
#include "core/ServiceLog.h"

namespace {

constexpr char kTag[] = "UserAuthService::LoadZMSSDKLibrary";

template <typename EntryPoint>
void Resolve(HMODULE module, const char* name, EntryPoint& entryPoint) {
    entryPoint = userauth::EntryPointOf<EntryPoint>(module, name);
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

bool UserAuthService::LoadZMSSDKLibrary() try {
    const std::wstring directory = userauth::GetCurrentModuleDirectory();
    const std::wstring path = directory + L"ZVAccountSdk.dll";
    // The result is not checked. The folder counts only where the host has called SetDefaultDllDirectories, and the
    // full path below does not need it.
    AddDllDirectory(directory.c_str());
    // Without a folder the name alone would search the current directory and PATH for a library to run.
    const HMODULE module = directory.empty() ? nullptr : LoadLibraryW(path.c_str());
    const DWORD error = GetLastError();
    m_hSdkModule.reset(module);
    if (module == nullptr) {
        ReportLoadFailure(error);
        return false;
    }
    ResolveAll(m_hSdkModule.get(), m_sdk);
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"Load ZMS SDK library successed!");
    return true;
} catch (...) {
    return m_hSdkModule != nullptr;
}
