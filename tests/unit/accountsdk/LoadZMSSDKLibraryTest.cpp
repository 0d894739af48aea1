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

std::vector<bool> Resolved(const AccountSdkEntryPoints& sdk) {
    const auto resolved = [](auto... entryPoints) { return std::vector<bool>{(entryPoints != nullptr)...}; };
    return resolved(sdk.init, sdk.uninit, sdk.signIn, sdk.openAccountCenter, sdk.hasAccountChanged,
                    sdk.registerNotifyFunction, sdk.isSupportAccount, sdk.getOAuthDomain, sdk.isAccountLoggedIn,
                    sdk.setLogoutEnable);
}

}  // namespace

// Needs a display: the box is the real one.
TEST(LoadZMSSDKLibrary, WithoutTheSdkABoxShowsTheErrorAndTheServiceLives) {
    Recording() = SuiteRecording();
    auto text = std::async(std::launch::async, TextOfMessageBox, L"Load ZMS SDK Failed");
    const auto service = UserAuthServiceAccess::Make();
    EXPECT_EQ(text.get(), L"dwError = 126 \r\n");
    EXPECT_FALSE(UserAuthServiceAccess::SdkLoaded(*service));
    EXPECT_EQ(Resolved(UserAuthServiceAccess::Sdk(*service)), std::vector<bool>(10, false));
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
        std::vector<bool> resolved;
    } rows[] = {
        {"scripted-sdk.dll", std::vector<bool>(10, true)},
        {"init-only-sdk.dll", {true, true, false, false, false, false, false, false, false, false}},
    };
    for (const auto& row : rows) {
        Recording() = SuiteRecording();
        const InstalledSdk sdk(row.sdk);
        const auto service = UserAuthServiceAccess::Make();
        EXPECT_TRUE(UserAuthServiceAccess::SdkLoaded(*service)) << row.sdk;
        EXPECT_EQ(Resolved(UserAuthServiceAccess::Sdk(*service)), row.resolved) << row.sdk;
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
