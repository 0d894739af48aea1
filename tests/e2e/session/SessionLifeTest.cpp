#include <ParamStore.h>

#include "PortraitWindow.h"
#include "SandboxSession.h"

namespace {

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

    std::string m_code;
    PortraitWindow m_window;
};

}  // namespace

TEST_F(SessionLife, EveryOperationFindsItsServer) {
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    EXPECT_EQ(store->GetCurrentAt(), m_service->GetCurrentAT());
    EXPECT_EQ(store->GetCurrentRt(), m_service->GetCurrentRT());
    EXPECT_EQ(m_service->GetCountryCode(), "CN");
    EXPECT_TRUE(store->GetStartSend());
    EXPECT_TRUE(m_service->IsZmsSignIn());
    std::wstring nobody = L"nobody";
    EXPECT_TRUE(m_service->IsZmsAccountChanged(nobody));
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
