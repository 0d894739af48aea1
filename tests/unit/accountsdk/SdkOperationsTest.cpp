#include <HttpLib.h>

#include "ServiceFixture.h"

using SdkOperations = ServiceTest;

namespace {

int Code(ZvIdErrorType type) { return static_cast<int>(type); }

Lines Logged(const std::string& operation, const std::string& message) { return Log("2", operation, message); }

const char kScopes[] =
    "https://www.example.com/auth/account/base.profile https://www.example.com/auth/account/devicelist "
    "https://www.example.com/auth/drive https://www.example.com/auth/cloudphoto openid "
    "https://www.example.com/auth/account/country https://www.example.com/auth/cloudbackup "
    "https://www.example.com/auth/drive/extension https://www.example.com/auth/clouddatasync "
    "https://www.example.com/auth/account/account.flags https://www.example.com/auth/account/realname/state ";

void Ignore(MessageType, char*, char*) {}

}  // namespace

TEST_F(SdkOperations, PassArgumentsAndCodesThrough) {
    std::string name = "Sign \"out\"";
    std::string empty;
    std::string thai = "\xE0\xB8\xAD";
    std::wstring user = L"\u0E2D";
    std::wstring nobody;
    using Operation = std::function<int(UserAuthService&)>;
    const Operation initialize = [](auto& s) { return Code(s.InitializeSDK()); };
    const Operation initZms = [](auto& s) { return s.InitZms(Ignore); };
    const Operation initWithoutCallback = [](auto& s) { return s.InitZms(nullptr); };
    const Operation uninitialize = [](auto& s) { return Code(s.UnInitializeSDK()); };
    const Operation signIn = [](auto& s) { return Code(s.ZmsSignIn()); };
    const Operation openCenter = [](auto& s) { return Code(s.OpenAccountCenterInvoke()); };
    const Operation registerLogout = [&](auto& s) { return Code(s.RegisterLogout(name, thai)); };
    const Operation registerNothing = [&](auto& s) { return Code(s.RegisterLogout(empty, empty)); };
    const Operation isChanged = [&](auto& s) { return int{s.IsZmsAccountChanged(user)}; };
    const Operation isNobodyChanged = [&](auto& s) { return int{s.IsZmsAccountChanged(nobody)}; };
    const Operation isSignedIn = [](auto& s) { return int{s.IsZmsSignIn()}; };
    const Lines started = Store("SetStartSend", "true");
    const Lines initialized = Logged("InitializeSDK", "ZMS Init OK!");
    const Lines kept = Logged("IsZmsAccountChanged", "IsZmsAccountChanged: return false");
    using Codes = std::map<std::string, int>;
    const Codes failures = {{"Init", 7}, {"Uninit", 3}};
    const struct {
        const char* name;
        Codes codes;
        Operation operation;
        int result;
        std::string calls;
        Lines journal;
    } rows[] = {
        {"InitializeSDK", {}, initialize, 0, "Init()", initialized},
        {"Uninit's code replaces Init's", failures, initialize, 3, "Init()Uninit()", {}},
        {"InitZms", Codes{{"RegisterNotifyFunction", 9}}, initZms, 9, "Init()RegisterNotifyFunction(callback)",
         started + initialized},
        {"InitZms goes on when Uninit answers 0", Codes{{"Init", -7}}, initWithoutCallback, 0,
         "Init()Uninit()RegisterNotifyFunction(null)", started},
        {"InitZms stops at a failure", failures, initZms, 3, "Init()Uninit()", started},
        {"UnInitializeSDK", {{"Uninit", 4}}, uninitialize, 4, "Uninit()", {}},
        {"ZmsSignIn", Codes{{"SignIn", 21}}, signIn, 21,
         std::string("SignIn(104862915|") + kScopes + "|{\"LocationX\":,\"LocationY\":})",
         Logged("ZmsSignIn", "ZmsSignIn:104862915") + Lines{"event 248 5 4"}},
        {"account centre", Codes(), openCenter, 0, "OpenAccountCenter()",
         Logged("OpenAccountCenterInvoke", "OpenAccountCenterInvoke:0")},
        {"account centre fails", Codes{{"OpenAccountCenter", -5}}, openCenter, -5, "OpenAccountCenter()",
         Logged("OpenAccountCenterInvoke", "OpenAccountCenterInvoke:-5") +
             Log("5", "OpenAccountCenterInvoke", "Error: OpenAccoutCenter failed: -5")},
        {"RegisterLogout", Codes{{"SetLogoutEnable", 2}}, registerLogout, 2,
         "SetLogoutEnable({\"description\":\"\\u0e2d\",\"name\":\"Sign \\\"out\\\"\"}\n)", Lines()},
        {"RegisterLogout of nothing", Codes(), registerNothing, 0,
         "SetLogoutEnable({\"description\":\"\",\"name\":\"\"}\n)", Lines()},
        {"changed", Codes{{"HasAccountChanged", 11}}, isChanged, 1, "HasAccountChanged(\xE0\xB8\xAD)",
         Logged("IsZmsAccountChanged", "IsZmsAccountChanged:11")},
        {"1 is not changed", Codes{{"HasAccountChanged", 1}}, isChanged, 0, "HasAccountChanged(\xE0\xB8\xAD)",
         Logged("IsZmsAccountChanged", "IsZmsAccountChanged:1") + kept},
        {"nobody", Codes{{"HasAccountChanged", 11}}, isNobodyChanged, 0, "",
         Logged("IsZmsAccountChanged", "IsZmsAccountChanged: usedid is null")},
        {"signed in", Codes(), isSignedIn, 1, "IsAccountLoggedIn()", Logged("IsZmsSignIn", "IsZmsSignIn:0")},
        {"1 is not signed in", Codes{{"IsAccountLoggedIn", 1}}, isSignedIn, 0, "IsAccountLoggedIn()",
         Logged("IsZmsSignIn", "IsZmsSignIn:1")},
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

TEST_F(SdkOperations, GetRtqRemoteInfoAnswersTheBodyOfA200Only) {
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
