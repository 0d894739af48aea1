#include <atomic>
#include <chrono>
#include <thread>

#include "ServiceFixture.h"

namespace {

// Waits for a message box with the caption, keeps its text and closes it.
class MessageBoxWatcher {
public:
    explicit MessageBoxWatcher(const wchar_t* caption) : m_thread([this, caption] { Watch(caption); }) {}
    ~MessageBoxWatcher() { Join(); }
    MessageBoxWatcher(const MessageBoxWatcher&) = delete;
    MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

    std::wstring Text() {
        Join();
        return m_text;
    }

private:
    void Watch(const wchar_t* caption) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline) {
            const HWND box = FindWindowW(nullptr, caption);
            const HWND label = box == nullptr ? nullptr : FindText(box);
            if (label != nullptr) {
                wchar_t text[256] = {};
                SendMessageW(label, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
                m_text = text;
                PostMessageW(box, WM_CLOSE, 0, 0);
                return;
            }
            Sleep(20);
        }
    }

    // The box's icon is a "Static" too, without text.
    static HWND FindText(HWND box) {
        HWND label = nullptr;
        while ((label = FindWindowExW(box, label, L"Static", nullptr)) != nullptr && GetWindowTextLengthW(label) == 0) {
        }
        return label;
    }

    void Join() {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    std::wstring m_text;
    std::thread m_thread;
};

std::vector<bool> Resolved(const AccountSdkEntryPoints& sdk) {
    return {sdk.init != nullptr,
            sdk.uninit != nullptr,
            sdk.signIn != nullptr,
            sdk.openAccountCenter != nullptr,
            sdk.hasAccountChanged != nullptr,
            sdk.registerNotifyFunction != nullptr,
            sdk.isSupportAccount != nullptr,
            sdk.getOAuthDomain != nullptr,
            sdk.isAccountLoggedIn != nullptr,
            sdk.setLogoutEnable != nullptr};
}

const char kLoaded[] = "log 10 2 UserAuthService::LoadZMSSDKLibrary Load ZMS SDK library successed!";

}  // namespace

// Needs a display: the box is the real one.
TEST(LoadZMSSDKLibrary, WithoutTheSdkABoxShowsTheErrorAndTheServiceLives) {
    Recording() = SuiteRecording();
    MessageBoxWatcher watcher(L"Load ZMS SDK Failed");
    const auto service = UserAuthServiceAccess::Make();
    EXPECT_EQ(watcher.Text(), L"dwError = 126 \r\n");
    EXPECT_FALSE(UserAuthServiceAccess::SdkLoaded(*service));
    EXPECT_EQ(Resolved(UserAuthServiceAccess::Sdk(*service)), std::vector<bool>(10, false));
    EXPECT_EQ(
        Recording().journal,
        std::vector<std::string>{"log 10 5 UserAuthService::LoadZMSSDKLibrary Error: Load ZMS SDK library failed!"});

    // The start-send flag is set first and whatever follows; every operation answers for its missing entry point.
    Recording().journal.clear();
    std::wstring user = L"u";
    std::string text = "t";
    EXPECT_EQ(service->InitZms(nullptr), -1);
    EXPECT_EQ(service->UnInitializeSDK(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->ZmsSignIn(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->OpenAccountCenterInvoke(), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->RegisterLogout(text, text), ZvIdErrorType::kEntryPointMissing);
    EXPECT_EQ(service->RegisterNotifyFunctionInvoke(nullptr), ZvIdErrorType::kEntryPointMissing);
    EXPECT_FALSE(service->IsZmsAccountChanged(user));
    EXPECT_FALSE(service->IsZmsSignIn());
    EXPECT_EQ(Recording().journal,
              (std::vector<std::string>{
                  "store SetStartSend true", "log 10 2 UserAuthService::ZmsSignIn ZmsSignIn: oauth unknow",
                  "log 10 2 UserAuthService::IsZmsAccountChanged IsZmsAccountChanged: return false"}));
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
        EXPECT_EQ(Recording().journal, std::vector<std::string>{kLoaded}) << row.sdk;
    }
}

TEST(LoadZMSSDKLibrary, DestructionFreesTheLibraryWithoutUninit) {
    const InstalledSdk sdk("scripted-sdk.dll");
    auto service = UserAuthServiceAccess::Make();
    ASSERT_NE(GetModuleHandleW(L"ZVAccountSdk.dll"), nullptr);
    HMODULE witness = LoadLibraryW((ProgramFolder() / "ZVAccountSdk.dll").c_str());
    service.reset();
    EXPECT_TRUE(InstalledSdk::Script().calls.empty());
    FreeLibrary(witness);
    EXPECT_EQ(GetModuleHandleW(L"ZVAccountSdk.dll"), nullptr);
}
