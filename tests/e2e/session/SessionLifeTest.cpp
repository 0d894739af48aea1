#include <ParamStore.h>

#include "PortraitWindow.h"
#include "SandboxSession.h"

namespace {

[[maybe_unused]] const char kPhoto[] = "/photos/260086000100000001.png";

// Signed in as the default account, with a window for the portrait message.
class SessionLife : public SandboxSession {
protected:
    SessionLife() { SignInAgain(); }

    void SignInAgain() {
        m_code = SignIn();
        ASSERT_TRUE(m_service->RequestAT(m_code, m_code.c_str())) << LogText();
    }

    // Fetches the profile and waits for its message, so that no download runs into the next step.
    bool ProfileWithMessage() { return m_service->RequestUserInfo() && m_window.Messages(1) == 1; }

    std::filesystem::path Portrait() { return m_folder / "HeadPortrait"; }

    std::string m_code;
    PortraitWindow m_window;
};

}  // namespace

TEST_F(SessionLife, EveryOperationFindsItsServerAndNoSecretReachesTheLog) {
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    EXPECT_EQ(store->GetCurrentAt(), m_service->GetCurrentAT());
    EXPECT_EQ(store->GetCurrentRt(), m_service->GetCurrentRT());
    EXPECT_EQ(m_service->GetCountryCode(), "CN");
    EXPECT_TRUE(store->GetStartSend());
    EXPECT_TRUE(m_service->IsZmsSignIn());
    std::wstring nobody = L"nobody";
    EXPECT_TRUE(m_service->IsZmsAccountChanged(nobody));
    const std::wstring code = Wide(m_code);
    EXPECT_FALSE(m_service->RequestAT("", m_code.c_str())) << "a code is good for one exchange";
    SignInAgain();
    EXPECT_TRUE(m_service->RequestApplicationAT());
    EXPECT_FALSE(store->GetAppAT().empty());
    EXPECT_TRUE(m_service->RequestUserID());
    EXPECT_EQ(m_service->GetCurrentUserID(), L"260086000100000001");
    m_service->SetCurrrentUserID(L"");
    EXPECT_TRUE(m_service->RequestUserIdFromSyncServer());
    EXPECT_EQ(store->GetUserID(), L"260086000100000001");
    EXPECT_TRUE(m_service->UpdateRegistInfo());
    EXPECT_EQ(m_service->GetLanguageType(), "zh-cn");
    EXPECT_TRUE(m_service->GetCurrentPriviledge());
    EXPECT_TRUE(m_service->GetClientLogReportStatus());
    EXPECT_TRUE(m_service->IsChinaAccount());

    EXPECT_TRUE(ProfileWithMessage());
    EXPECT_EQ(m_service->GetCurrentUserName(), L"\u0E2A\u0E21\u0E0A\u0E32\u0E22 \u0E43\u0E08\u0E14\u0E35");
    EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), 7);
    EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), Portrait().wstring());
    for (int tries = 0; tries < 500 && ReadFile(Portrait()).size() < 4; ++tries) {
        Sleep(10);  // the message comes before the file is closed
    }
    EXPECT_EQ(ReadFile(Portrait()).substr(0, 4), "\x89PNG");

    const std::wstring before = m_service->GetCurrentAT();
    GlobalParamWrapper::GetInstance()->SetAtIsExpired(true);
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_NE(m_service->GetCurrentAT(), before);
    EXPECT_FALSE(store->GetAtIsExpired());
    std::map<std::string, std::string> headers;
    EXPECT_NE(m_service->GetRtqRemoteInfo(m_sandbox.Url("/routing/v1/remote"), headers), "");
    EXPECT_FALSE(headers.empty());
    const std::string log = LogText();
    for (const char* control : {"getTokenInfo", "Get AT successed!", "\"event\":250"}) {
        EXPECT_NE(log.find(control), std::string::npos) << control;
    }
    for (const std::wstring& secret : {code, Wide(m_code), before, std::wstring(m_service->GetCurrentAT()),
                                       std::wstring(m_service->GetCurrentRT()), store->GetAppAT()}) {
        EXPECT_FALSE(secret.empty());
        EXPECT_EQ(log.find(Narrow(secret)), std::string::npos);
    }
}

TEST_F(SessionLife, AccountsWithOtherScriptsAndWithoutPortrait) {
    const struct {
        const char* userId;
        const wchar_t* wideId;
        const wchar_t* name;
        bool portrait;
    } rows[] = {
        {"260086000100000003", L"260086000100000003",
         L"\u041D\u0430\u0434\u0435\u0436\u0434\u0430 \u0401\u043B\u043A\u0438\u043D\u0430", true},
        {"260086000100000004", L"260086000100000004", L"Luna \U0001F319\U0001F98A", false},
        {R"(\u017elu\u0165ou\u010dk\u00fd-\u5c0f\u6797-5)", L"\u017Elu\u0165ou\u010Dk\u00FD-\u5C0F\u6797-5",
         L"\u5C0F\u6797 Ji\u0159\u00ED", true},
    };
    for (const auto& row : rows) {
        m_sandbox.Control("/sandbox/account", std::string(R"({"userId":")") + row.userId + "\"}");
        SignInAgain();
        EXPECT_TRUE(ProfileWithMessage()) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserID(), row.wideId) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserName(), row.name) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath().empty(), !row.portrait) << row.userId;
        EXPECT_FALSE(m_service->IsChinaAccount());
    }
}

TEST_F(SessionLife, AnExpiredAccessTokenIsRefreshed) {
    m_sandbox.Control("/sandbox/clock", R"({"advanceSeconds":3601})");
    EXPECT_FALSE(m_service->RequestUserID());
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(m_service->RequestUserID());
}

#if defined(__MINGW32__)  // the program finds the service's entry points by this compiler's names

// What a host does around a running download; see support/LeavingHost.cpp.
TEST_F(SessionLife, HostsLeaveDuringADownload) {
    constexpr int kExits = 200;
    constexpr int kAtOnce = 8;
    m_sandbox.Control("/sandbox/faults",
                      std::string(R"({"stallAfter":10,"stallMs":600000,"endpoint":")") + kPhoto + "\"}");
    const std::wstring token = m_service->GetCurrentAT();
    const auto arguments = [&](const std::wstring& way) {
        return way + L" \"" + (m_folder / "client.json").wstring() + L"\" " + token + L" \"" +
               (m_folder / "authority.pem").wstring() + L"\"";
    };
    for (int started = 0; started < kExits; started += kAtOnce) {
        if (started == kExits / 2 / kAtOnce * kAtOnce) {
            UsePlatform(m_sandbox.m_https);  // the other half leaves TLS connections behind
        }
        std::vector<std::unique_ptr<ChildProcess>> hosts;
        hosts.reserve(kAtOnce);
        for (int index = 0; index < kAtOnce; ++index) {
            hosts.push_back(std::make_unique<ChildProcess>(L"leaving-host.exe",
                                                           arguments(index % 2 == 0 ? L"return" : L"exit-process")));
        }
        for (const auto& host : hosts) {
            EXPECT_EQ(host->ReadLine(), "leaving");
        }
        const ULONGLONG start = GetTickCount64();
        for (const auto& host : hosts) {
            EXPECT_EQ(host->Finish(), 42) << host->m_error;
        }
        EXPECT_LT(GetTickCount64() - start, 5000U);
    }
    UsePlatform(m_sandbox.m_http);
    EXPECT_GT(m_sandbox.Requests(kPhoto), kExits / 4) << "hosts left during the download, not before it";

    m_sandbox.Fault(kPhoto, R"({"stallAfter":10,"stallMs":1500})");
    ChildProcess unloading(L"leaving-host.exe", arguments(L"unload"));
    EXPECT_EQ(unloading.Finish(), 42) << unloading.m_output << unloading.m_error;
}

#endif
