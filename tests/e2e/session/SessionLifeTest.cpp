#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <thread>

#include "SandboxSession.h"

namespace {

constexpr UINT kPortraitChanged = 0x0C87;
const char kRefresh[] = "/pcclient/refreshtoken";
const char kProfile[] = "/KeCloudUserInformationService/v1/users";
const char kPhoto[] = "/photos/260086000100000001.png";

// Signed in as the default account, with a window for the portrait message.
class SessionLife : public SandboxSession {
protected:
    SessionLife()
        : m_window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        GlobalParamWrapper::GetInstance()->SetMainWnd(m_window);
        SignInAgain();
    }
    ~SessionLife() override {
        GlobalParamWrapper::GetInstance()->SetMainWnd(nullptr);
        m_service->SetAtExpireCallback(nullptr);
        DestroyWindow(m_window);
    }

    void SignInAgain() {
        const std::string code = SignIn();
        ASSERT_TRUE(m_service->RequestAT("", code.c_str())) << LogText();
    }

    bool PortraitMessageArrives(DWORD milliseconds) {
        const ULONGLONG deadline = GetTickCount64() + milliseconds;
        MSG message{};
        while (PeekMessageW(&message, m_window, kPortraitChanged, kPortraitChanged, PM_REMOVE) == FALSE) {
            if (GetTickCount64() > deadline) {
                return false;
            }
            Sleep(5);
        }
        return true;
    }

    // What the look-ups fill, and nothing else should change.
    std::wstring State() {
        const std::string language = m_service->GetLanguageType();
        return m_service->GetCurrentUserID() + L"|" + m_service->GetCurrentUserName() + L"|" +
               m_service->GetCurrentUserHeadImageUrl() + L"|" + GlobalParamWrapper::GetInstance()->GetAppAT() + L"|" +
               std::wstring(language.begin(), language.end()) + L"|" +
               std::to_wstring(m_service->GetCurrentUserAccountBrandID());
    }

    // How often a text stands in the log so far.
    std::size_t CountOf(const std::string& text) {
        const std::string log = LogText();
        std::size_t count = 0;
        for (std::size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
            ++count;
        }
        return count;
    }

    // Fetches the profile and waits for its message, so that no download runs into the next step.
    bool ProfileWithMessage() { return m_service->RequestUserInfo() && PortraitMessageArrives(15000); }

    std::filesystem::path Portrait() { return m_folder / "HeadPortrait"; }

    // The message comes before the file is closed.
    std::string PortraitOnceWritten(std::size_t bytes) {
        std::string text = ReadFile(Portrait());
        for (int tries = 0; tries < 500 && text.size() < bytes; ++tries) {
            Sleep(10);
            text = ReadFile(Portrait());
        }
        return text;
    }

    HWND m_window;
};

}  // namespace

TEST_F(SessionLife, EveryOperationFindsItsServer) {
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
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
    EXPECT_EQ(PortraitOnceWritten(4).substr(0, 4), "\x89PNG");

    const std::wstring before = m_service->GetCurrentAT();
    GlobalParamWrapper::GetInstance()->SetAtIsExpired(true);
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_NE(m_service->GetCurrentAT(), before);
    EXPECT_FALSE(store->GetAtIsExpired());
    const std::string log = LogText();
    EXPECT_NE(log.find("getTokenInfo"), std::string::npos) << "the line that carries a token is there";
    for (const std::wstring& secret : {before, std::wstring(m_service->GetCurrentAT()),
                                       std::wstring(m_service->GetCurrentRT()), store->GetAppAT()}) {
        EXPECT_EQ(log.find(std::string(secret.begin(), secret.end())), std::string::npos);
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
        {u8"žluťoučký-小林-5", L"\u017Elu\u0165ou\u010Dk\u00FD-\u5C0F\u6797-5", L"\u5C0F\u6797 Ji\u0159\u00ED", true},
    };
    for (const auto& row : rows) {
        Json::Value account;
        account["userId"] = row.userId;
        m_sandbox.Control("/sandbox/account", account);
        SignInAgain();
        EXPECT_TRUE(ProfileWithMessage()) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserID(), row.wideId) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserName(), row.name) << row.userId;
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath().empty(), !row.portrait) << row.userId;
        EXPECT_FALSE(m_service->IsChinaAccount());
    }
}

TEST_F(SessionLife, ExpiredAndRevokedTokens) {
    int callbacks = 0;
    m_service->SetAtExpireCallback([&] { ++callbacks; });
    Json::Value hours;
    hours["advanceSeconds"] = 3601;
    m_sandbox.Control("/sandbox/clock", hours);
    EXPECT_FALSE(m_service->RequestUserID()) << "the access token has expired";
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(m_service->RequestUserID());
    EXPECT_EQ(callbacks, 0);
    Json::Value kind;
    kind["kind"] = "refresh";
    EXPECT_GE(m_sandbox.Control("/sandbox/revoke", kind)["revoked"].asInt(), 1);
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(callbacks, 1);
}

TEST_F(SessionLife, FaultsOfEachServerFailTheirOperationOnly) {
    int callbacks = 0;
    m_service->SetAtExpireCallback([&] { ++callbacks; });
    const struct {
        const char* endpoint;
        std::function<bool(UserAuthService&)> operation;
        bool trueOnAny200;  // what the reply says is not part of the result
        std::string line;   // of the log, before the code
    } operations[] = {
        {kRefresh, [](auto& s) { return s.GetAccessTokenByRefrshToken(); }, false, "refresh AT error statusCode: "},
        {"/pcclient/getAppAccessToken", [](auto& s) { return s.RequestApplicationAT(); }, true,
         "Get ApplyAT Failed! httpcode = "},
        {"/pcclient/getRegisterInfo", [](auto& s) { return s.UpdateRegistInfo(); }, false,
         "Error: UpdateRegistInfo failed, httpcode = "},
        {"/gateway", [](auto& s) { return s.RequestUserID(); }, true, "HttpCode:"},
        {"/drive/v1/about", [](auto& s) { return s.RequestUserIdFromSyncServer(); }, true, "RequestUserId httpcode="},
        {kProfile, [](auto& s) { return s.RequestUserInfo(); }, true, "HttpCode:"},
    };
    const struct {
        const char* fault;
        int code;
    } faults[] = {{R"({"status":503})", 503},
                  {R"({"cutAfter":5})", kHttpConnectionBroken},
                  {R"({"contentLength":9999})", kHttpConnectionBroken},
                  {R"({"garbage":true})", 200},
                  {R"({"wrongTypes":true})", 200},
                  {R"({"body":"[]"})", 200},
                  {R"({"oversize":50000})", 200}};
    for (const auto& operation : operations) {
        for (const auto& fault : faults) {
            SCOPED_TRACE(std::string(operation.endpoint) + " " + fault.fault);
            const std::wstring tokens = m_service->GetCurrentAT() + L"|" + m_service->GetCurrentRT();
            const std::wstring state = State();
            const std::string line = operation.line + std::to_string(fault.code) + "\n";
            const std::size_t lines = CountOf(line);
            callbacks = 0;
            m_sandbox.Fault(operation.endpoint, fault.fault);
            EXPECT_EQ(operation.operation(*m_service), operation.trueOnAny200 && fault.code == 200);
            EXPECT_EQ(m_service->GetCurrentAT() + L"|" + m_service->GetCurrentRT(), tokens);
            EXPECT_EQ(callbacks, operation.endpoint == kRefresh && fault.code == 200 ? 1 : 0);
            EXPECT_EQ(CountOf(line), lines + 1) << line;
            if (fault.code != 200) {
                EXPECT_EQ(State(), state);
            }
        }
        EXPECT_TRUE(operation.operation(*m_service)) << operation.endpoint << " without a fault";
    }
    PortraitMessageArrives(15000);
}

// All servers at once, so that the 30 seconds are waited for only once.
TEST_F(SessionLife, AStalledServerFailsItsOperationAfterTheStallLimit) {
    const std::pair<const char*, std::function<bool(UserAuthService&)>> operations[] = {
        {kRefresh, [](auto& s) { return s.GetAccessTokenByRefrshToken(); }},
        {"/pcclient/getAppAccessToken", [](auto& s) { return s.RequestApplicationAT(); }},
        {"/pcclient/getRegisterInfo", [](auto& s) { return s.UpdateRegistInfo(); }},
        {"/gateway", [](auto& s) { return s.RequestUserID(); }},
        {"/drive/v1/about", [](auto& s) { return s.RequestUserIdFromSyncServer(); }},
        {kProfile, [](auto& s) { return s.RequestUserInfo(); }},
    };
    const std::wstring state = State();
    std::vector<std::thread> threads;
    threads.reserve(std::size(operations));
    for (const auto& operation : operations) {
        m_sandbox.Fault(operation.first, R"({"stallMs":120000})");
        threads.emplace_back([&] { EXPECT_FALSE(operation.second(*m_service)) << operation.first; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(State(), state);
    EXPECT_NE(LogText().find("refresh AT error statusCode: -4"), std::string::npos);
}

TEST_F(SessionLife, APortraitThatCannotBeHadEmptiesThePath) {
    for (const char* fault : {R"({"status":404})", R"({"cutAfter":20})"}) {
        EXPECT_TRUE(ProfileWithMessage());
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), Portrait().wstring());
        m_sandbox.Fault(kPhoto, fault);
        EXPECT_TRUE(ProfileWithMessage()) << fault;
        EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), L"") << fault;
        EXPECT_LE(PortraitOnceWritten(0).size(), 20U)
            << fault << ": nothing of an error page, at most what came before the cut";
    }
}

TEST_F(SessionLife, ClearDuringAStalledRefreshAnswersAtOnce) {
    m_sandbox.Fault(kRefresh, R"({"delayMs":3000})");
    std::thread refresh([&] { EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken()); });
    m_sandbox.AwaitRequest(kRefresh);
    const ULONGLONG start = GetTickCount64();
    EXPECT_FALSE(m_service->GetCurrentAT().empty());
    m_service->Clear();
    EXPECT_TRUE(m_service->GetCurrentAT().empty());
    EXPECT_LT(GetTickCount64() - start, 1500U);
    refresh.join();
    EXPECT_FALSE(m_service->GetCurrentAT().empty()) << "a token that arrives after Clear is stored";
}

#if defined(__MINGW32__)  // the program finds the service's entry points by this compiler's names

// What a host does around a running download; see support/LeavingHost.cpp.
TEST_F(SessionLife, HostsLeaveDuringADownload) {
    constexpr int kExits = 200;
    constexpr int kAtOnce = 8;
    Json::Value fault;
    fault["endpoint"] = kPhoto;
    fault["stallAfter"] = 10;
    fault["stallMs"] = 600000;
    m_sandbox.Control("/sandbox/faults", fault);
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
    EXPECT_GT(m_sandbox.Control("/sandbox/statistics")["requests"][kPhoto].asInt(), kExits / 2)
        << "most hosts left during the download, not before it";

    m_sandbox.Fault(kPhoto, R"({"stallAfter":10,"stallMs":1500})");
    ChildProcess unloading(L"leaving-host.exe", arguments(L"unload"));
    EXPECT_EQ(unloading.Finish(), 42) << unloading.m_output << unloading.m_error;
}

#endif
