#include <HttpLib.h>

#include "ServiceFixture.h"

namespace {

using Lines = std::vector<std::string>;

int Code(ZvIdErrorType type) { return static_cast<int>(type); }

std::string Log(const char* severity, const std::string& operation, const std::string& message) {
    return "log 10 " + std::string(severity) + " UserAuthService::" + operation + " " + message;
}

const char kScopes[] =
    "https://www.example.com/auth/account/base.profile https://www.example.com/auth/account/devicelist "
    "https://www.example.com/auth/drive https://www.example.com/auth/cloudphoto openid "
    "https://www.example.com/auth/account/country https://www.example.com/auth/cloudbackup "
    "https://www.example.com/auth/drive/extension https://www.example.com/auth/clouddatasync "
    "https://www.example.com/auth/account/account.flags https://www.example.com/auth/account/realname/state ";

void Ignore(MessageType, char*, char*) {}

}  // namespace

TEST_F(ServiceTest, SdkOperationsPassArgumentsAndCodesThrough) {
    std::string name = "Sign \"out\"";
    std::string empty;
    std::string thai = "\xE0\xB8\xAD";
    std::wstring user = L"\u0E2D";
    std::wstring nobody;
    const struct {
        const char* name;
        std::map<std::string, int> codes;
        std::function<int(UserAuthService&)> operation;
        int result;
        Lines calls;
        Lines journal;
    } rows[] = {
        {"InitializeSDK",
         {},
         [](auto& s) { return Code(s.InitializeSDK()); },
         0,
         {"Init()"},
         {Log("2", "InitializeSDK", "ZMS Init OK!")}},
        {"Uninit's code replaces Init's",
         {{"Init", 7}, {"Uninit", 3}},
         [](auto& s) { return Code(s.InitializeSDK()); },
         3,
         {"Init()", "Uninit()"},
         {}},
        {"InitZms",
         {{"RegisterNotifyFunction", 9}},
         [](auto& s) { return s.InitZms(Ignore); },
         9,
         {"Init()", "RegisterNotifyFunction(callback)"},
         {"store SetStartSend true", Log("2", "InitializeSDK", "ZMS Init OK!")}},
        {"InitZms goes on when Uninit answers 0",
         {{"Init", 7}},
         [](auto& s) { return s.InitZms(nullptr); },
         0,
         {"Init()", "Uninit()", "RegisterNotifyFunction(null)"},
         {"store SetStartSend true"}},
        {"InitZms stops at a failure",
         {{"Init", 7}, {"Uninit", 8}},
         [](auto& s) { return s.InitZms(Ignore); },
         8,
         {"Init()", "Uninit()"},
         {"store SetStartSend true"}},
        {"UnInitializeSDK", {{"Uninit", 4}}, [](auto& s) { return Code(s.UnInitializeSDK()); }, 4, {"Uninit()"}, {}},
        {"ZmsSignIn",
         {{"SignIn", 21}},
         [](auto& s) { return Code(s.ZmsSignIn()); },
         21,
         {std::string("SignIn(104862915|") + kScopes + "|{\"LocationX\":,\"LocationY\":})"},
         {Log("2", "ZmsSignIn", "ZmsSignIn:104862915"), "event 248 5 4"}},
        {"account centre",
         {},
         [](auto& s) { return Code(s.OpenAccountCenterInvoke()); },
         0,
         {"OpenAccountCenter()"},
         {Log("2", "OpenAccountCenterInvoke", "OpenAccountCenterInvoke:0")}},
        {"account centre fails",
         {{"OpenAccountCenter", -5}},
         [](auto& s) { return Code(s.OpenAccountCenterInvoke()); },
         -5,
         {"OpenAccountCenter()"},
         {Log("2", "OpenAccountCenterInvoke", "OpenAccountCenterInvoke:-5"),
          Log("5", "OpenAccountCenterInvoke", "Error: OpenAccoutCenter failed: -5")}},
        {"RegisterLogout",
         {{"SetLogoutEnable", 2}},
         [&](auto& s) { return Code(s.RegisterLogout(name, thai)); },
         2,
         {"SetLogoutEnable({\"description\":\"\\u0e2d\",\"name\":\"Sign \\\"out\\\"\"}\n)"},
         {}},
        {"RegisterLogout of nothing",
         {},
         [&](auto& s) { return Code(s.RegisterLogout(empty, empty)); },
         0,
         {"SetLogoutEnable({\"description\":\"\",\"name\":\"\"}\n)"},
         {}},
        {"changed",
         {{"HasAccountChanged", 11}},
         [&](auto& s) { return int{s.IsZmsAccountChanged(user)}; },
         1,
         {"HasAccountChanged(\xE0\xB8\xAD)"},
         {Log("2", "IsZmsAccountChanged", "IsZmsAccountChanged:11")}},
        {"1 is not changed",
         {{"HasAccountChanged", 1}},
         [&](auto& s) { return int{s.IsZmsAccountChanged(user)}; },
         0,
         {"HasAccountChanged(\xE0\xB8\xAD)"},
         {Log("2", "IsZmsAccountChanged", "IsZmsAccountChanged:1"),
          Log("2", "IsZmsAccountChanged", "IsZmsAccountChanged: return false")}},
        {"nobody",
         {{"HasAccountChanged", 11}},
         [&](auto& s) { return int{s.IsZmsAccountChanged(nobody)}; },
         0,
         {},
         {Log("2", "IsZmsAccountChanged", "IsZmsAccountChanged: usedid is null")}},
        {"signed in",
         {},
         [](auto& s) { return int{s.IsZmsSignIn()}; },
         1,
         {"IsAccountLoggedIn()"},
         {Log("2", "IsZmsSignIn", "IsZmsSignIn:0")}},
        {"11 is not signed in",
         {{"IsAccountLoggedIn", 11}},
         [](auto& s) { return int{s.IsZmsSignIn()}; },
         0,
         {"IsAccountLoggedIn()"},
         {Log("2", "IsZmsSignIn", "IsZmsSignIn:11")}},
    };
    for (const auto& row : rows) {
        SdkScript& script = InstalledSdk::Script();
        script.codes = row.codes;
        script.calls.clear();
        Recording().journal.clear();
        EXPECT_EQ(row.operation(*m_service), row.result) << row.name;
        EXPECT_EQ(script.calls, row.calls) << row.name;
        EXPECT_EQ(Recording().journal, row.journal) << row.name;
    }
}

TEST_F(ServiceTest, GetRtqRemoteInfoAnswersTheBodyOfA200Only) {
    const struct {
        int status;
        const char* body;
        const char* answer;
    } rows[] = {{200, "[raw", "[raw"}, {200, "", ""}, {404, "x", ""}, {201, "x", ""}, {kHttpTimeout, "", ""}};
    for (const auto& row : rows) {
        Recording() = SuiteRecording();
        Recording().replies = {{row.status, row.body, {{"x-region", "eu"}}}};
        std::map<std::string, std::string> headers;
        EXPECT_EQ(m_service->GetRtqRemoteInfo(L"https://r/\u0E2D", headers), row.answer) << row.status;
        EXPECT_EQ(headers.at("x-region"), "eu");
        EXPECT_EQ(Recording().url, L"https://r/\u0E2D");
        EXPECT_TRUE(Recording().requestHeaders.empty());
        EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 0"});
    }
}
