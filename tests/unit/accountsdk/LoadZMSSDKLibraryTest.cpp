#include <algorithm>
#include <cstddef>
#include <future>

#include "ServiceFixture.h"

namespace {

// Waits for a message box with the caption, gives its text and closes it.
std::wstring TextOfMessageBox(const wchar_t* caption) {
    for (const ULONGLONG deadline = GetTickCount64() + 20'000; GetTickCount64() < deadline; Sleep(20)) {
        constexpr int kTextOfBox = 0xFFFF;
        const HWND box = FindWindowW(nullptr, caption);
        wchar_t text[256] = {};
        if (box != nullptr && GetDlgItemTextW(box, kTextOfBox, text, 256) > 0) {
            PostMessageW(box, WM_CLOSE, 0, 0);
            return text;
        }
    }
    return L"no box";
}

// The entry points in the order of their names below.
std::vector<FARPROC> Resolved(const AccountSdkEntryPoints& sdk) {
    const auto resolved = [](auto... entryPoints) {
        return std::vector<FARPROC>{reinterpret_cast<FARPROC>(entryPoints)...};
    };
    return resolved(sdk.init, sdk.uninit, sdk.signIn, sdk.openAccountCenter, sdk.hasAccountChanged,
                    sdk.registerNotifyFunction, sdk.isSupportAccount, sdk.getOAuthDomain, sdk.isAccountLoggedIn,
                    sdk.setLogoutEnable);
}

// What the loaded SDK exports under these names; null for the others.
std::vector<FARPROC> Exported() {
    std::vector<FARPROC> exported;
    for (const char* name :
         {"Init", "Uninit", "SignIn", "OpenAccountCenter", "HasAccountChanged", "RegisterNotifyFunction",
          "IsSupportAccount", "GetOAuthDomain", "IsAccountLoggedIn", "SetLogoutEnable"}) {
        exported.push_back(GetProcAddress(GetModuleHandleW(L"ZVAccountSdk.dll"), name));
    }
    return exported;
}

}  // namespace

// Needs a display: the box is the real one.
TEST(LoadZMSSDKLibrary, WithoutTheSdkABoxShowsTheErrorAndTheServiceLives) {
    Recording() = SuiteRecording();
    auto text = std::async(std::launch::async, TextOfMessageBox, L"Load ZMS SDK Failed");
    const auto service = UserAuthServiceAccess::Make();
    EXPECT_EQ(text.get(), L"dwError = 126 \r\n");
    EXPECT_FALSE(UserAuthServiceAccess::SdkLoaded(*service));
    EXPECT_EQ(Resolved(UserAuthServiceAccess::Sdk(*service)), std::vector<FARPROC>(10));
    EXPECT_EQ(Recording().journal, Log("5", "LoadZMSSDKLibrary", "Error: Load ZMS SDK library failed!"));

    // The start-send flag is set first and whatever follows; every operation answers for its missing entry point.
    Recording().journal.clear();
    std::wstring user = L"u";
    std::string name = "t";
    EXPECT_EQ(service->InitZms(nullptr), -1);
    EXPECT_EQ(service->UnInitializeSDK(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->ZmsSignIn(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->OpenAccountCenterInvoke(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->RegisterLogout(name, name), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->RegisterNotifyFunctionInvoke(nullptr), ZvIdErrorType::kEntryPointMissing);
    EXPECT_FALSE(service->IsZmsAccountChanged(user));
    EXPECT_FALSE(service->IsZmsSignIn());
    EXPECT_EQ(Recording().journal, Store("SetStartSend", "true") + Log("2", "ZmsSignIn", "ZmsSignIn: oauth unknow") +
                                       Log("2", "IsZmsAccountChanged", "IsZmsAccountChanged: return false"));
}

TEST(LoadZMSSDKLibrary, MissingExportsLeaveOnlyTheirOwnPointersNull) {
    const struct {
        const char* sdk;
        std::ptrdiff_t missing;
    } rows[] = {{"scripted-sdk.dll", 0}, {"init-only-sdk.dll", 8}};
    for (const auto& row : rows) {
        Recording() = SuiteRecording();
        const InstalledSdk sdk(row.sdk);
        const auto service = UserAuthServiceAccess::Make();
        EXPECT_TRUE(UserAuthServiceAccess::SdkLoaded(*service)) << row.sdk;
        const std::vector<FARPROC> resolved = Resolved(UserAuthServiceAccess::Sdk(*service));
        EXPECT_EQ(resolved, Exported()) << row.sdk;
        EXPECT_EQ(std::count(resolved.begin(), resolved.end(), nullptr), row.missing) << row.sdk;
        EXPECT_EQ(Recording().journal, Log("2", "LoadZMSSDKLibrary", "Load ZMS SDK library successed!")) << row.sdk;
    }
}

TEST(LoadZMSSDKLibrary, DestructionFreesTheLibraryWithoutUninit) {
    const InstalledSdk sdk("scripted-sdk.dll");
    auto service = UserAuthServiceAccess::Make();
    ASSERT_NE(GetModuleHandleW(L"ZVAccountSdk.dll"), nullptr);
    HMODULE witness = LoadLibraryW((ProgramFolder() / "ZVAccountSdk.dll").wstring().c_str());
    service.reset();
    EXPECT_TRUE(InstalledSdk::Script().calls.empty());
    FreeLibrary(witness);
    EXPECT_EQ(GetModuleHandleW(L"ZVAccountSdk.dll"), nullptr);
}
