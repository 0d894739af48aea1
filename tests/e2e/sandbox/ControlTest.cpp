#include <sstream>

#include "HttpCall.h"
#include "SandboxSession.h"

namespace {

using HeaderMap = BasicHttpLibStrategy::HeaderMap;

// The reply's status, and its text behind a blank. A POST when it has a body.
std::string Ask(const SandboxServer& sandbox, const std::string& path, const HeaderMap& headers,
                const std::string& body = "") {
    HttpCall call(sandbox.Url(path), headers);
    const int code = body.empty() ? call.Send(20) : call.Post(Wide(body), 20);
    return std::to_string(code) + " " + call.response;
}

// The page's token, as a browser gets it.
std::wstring TokenOf(const SandboxServer& sandbox) {
    const std::string page = Ask(sandbox, "/", {});
    const std::string start = "name=\"sandbox-token\" content=\"";
    const std::size_t at = page.find(start) + start.size();
    return Wide(page.substr(at, page.find('"', at) - at));
}

const std::string kSignInOrder =
    R"({"applicationId":"104862915","location":"{\"LocationX\":,\"LocationY\":}","scopes":"https://www.example.com)"
    R"(/auth/account/base.profile https://www.example.com/auth/account/devicelist https://www.example.com/auth/drive )"
    R"(https://www.example.com/auth/cloudphoto openid https://www.example.com/auth/account/country )"
    R"(https://www.example.com/auth/cloudbackup https://www.example.com/auth/drive/extension )"
    R"(https://www.example.com/auth/clouddatasync https://www.example.com/auth/account/account.flags )"
    R"(https://www.example.com/auth/account/realname/state "})";

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from << " in " << text;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

}  // namespace

// A test whose order is misread would try something else than it says.
TEST(SandboxControl, OrdersThatAreNotQuiteRightAreRefused) {
    const SandboxServer sandbox;
    const struct {
        const char* path;
        std::string order;
        const char* says;  // null: the order is good
    } rows[] = {
        {"/sandbox/clock", R"({"advanceSeconds":0})", nullptr},
        {"/sandbox/clock", R"({"advanceSeconds":-1})", "advanceSeconds"},
        {"/sandbox/clock", R"({"advanceSeconds":1.5})", "advanceSeconds"},
        {"/sandbox/clock", R"({"advanceSeconds":"1"})", "advanceSeconds"},
        {"/sandbox/clock", R"({"advanceSeconds":315360001})", "advanceSeconds"},
        {"/sandbox/clock", R"({"advanceSeconds":315360000})", nullptr},
        {"/sandbox/clock", R"({"advanceSeconds":1})", "ahead in all"},
        {"/sandbox/clock", "[]", "body is not a JSON object"},
        {"/sandbox/clock", R"({"advanceSeconds":0)", "body is not JSON"},
        {"/sandbox/clock", R"({"advanceSeconds":0,"advanceSeconds":0})", "body is not JSON"},
        {"/sandbox/account", R"({"userId":"nobody"})", "userId"},
        {"/sandbox/account", R"({"userId":260086000100000003})", "userId"},
        {"/sandbox/revoke", R"({"kind":"access"})", nullptr},
        {"/sandbox/revoke", R"({"kind":"all"})", "kind"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":599,"times":1})", nullptr},
        {"/sandbox/faults", R"({"endpoint":"/gateway"})", "the fault does nothing"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","garbage":false})", "the fault does nothing"},
        {"/sandbox/faults", R"({"status":500})", "endpoint is missing"},
        {"/sandbox/faults", R"({"endpoint":"/absent","status":500})", "/absent"},
        {"/sandbox/faults", R"({"endpoint":"/sandbox/faults","status":500})", "can have faults"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":199})", "status has the wrong type or is out of range"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":600})", "status"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":"500"})", "status"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":500,"times":0})", "times"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","delayMs":600001})", "delayMs"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","garbage":1})", "garbage"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":500,"stallAfter":1})", "stallAfter needs stallMs"},
        {"/sandbox/faults", R"({"endpoint":"/gateway","status":500,"stauts":1})", "stauts is not a member"},
        {"/sandbox/settings", R"({"modules":{"funcfg_drive":"false"},"result":0})", nullptr},
        {"/sandbox/settings", R"({"modules":[]})", "modules is not an object"},
        {"/sandbox/settings", R"({"modules":{"funcfg_pc_available":"true"}})", "give available"},
        {"/sandbox/settings", R"({"userstatus":0})", "userstatus is not a member"},
        {"/sandbox/user-keys", R"({"variant":"large","dataType":"12"})", nullptr},
        {"/sandbox/user-keys", R"({"variant":"largest"})", "variant is none of"},
        {"/sandbox/user-keys", R"({"variant":"large","dataType":"13"})", "dataType"},
        {"/sandbox/user-keys", R"({"variant":"large","datatype":"12"})", "datatype is not a member"},
        {"/sandbox/server-key", R"({"publicKey":1})", "publicKey"},
        {"/sandbox/server-key", R"({"key":"x"})", "key is not a member"},
        {"/sandbox/contacts", R"({"cards":200000,"coding":"br","note":"n","chunked":true})", nullptr},
        {"/sandbox/contacts", R"({"cards":200001})", "cards"},
        {"/sandbox/contacts", "{}", "give either cards or bytes"},
        {"/sandbox/contacts", R"({"cards":1,"bytes":1})", "give either cards or bytes"},
        {"/sandbox/contacts", R"({"cards":1,"coding":"zip"})", "coding"},
        {"/sandbox/contacts", R"({"bytes":1,"note":"n"})", "bytes takes no note"},
        {"/sandbox/contacts", R"({"bytes":1,"coding":"gzip"})", "no coding but identity"},
        {"/sandbox/contacts", R"({"bytes":1073741825})", "bytes"},
        {"/sandbox/sign-in", kSignInOrder, nullptr},
        {"/sandbox/sign-in", Replaced(kSignInOrder, "104862915", "104862916"), "applicationId"},
        {"/sandbox/sign-in", Replaced(kSignInOrder, "state \"", "state\""), "scopes"},
        {"/sandbox/sign-in", Replaced(kSignInOrder, "openid ", ""), "scopes"},
        {"/sandbox/sign-in", Replaced(kSignInOrder, "LocationY\\\":", "LocationY\\\":0"), "location"},
        {"/sandbox/sign-in-answer", R"({"request":"absent","userId":"260086000100000003"})", "no program waits"},
        {"/sandbox/sign-in-answer", R"({"request":"absent"})", "no program waits"},
        {"/sandbox/sign-in-answer", R"({"reqest":"absent"})", "reqest is not a member"},
        {"/sandbox/session", "{}", "does not take the method POST"},
        {"/sandbox/absent", "{}", "there is no endpoint"},
    };
    for (const auto& row : rows) {
        const std::string reply = Ask(sandbox, row.path, {}, row.order);
        EXPECT_EQ(reply.substr(0, 4) == "200 ", row.says == nullptr) << row.path << row.order << reply;
        EXPECT_EQ(reply[0], row.says == nullptr ? '2' : '4') << row.path << row.order << reply;
        EXPECT_NE(reply.find(row.says == nullptr ? "" : row.says), std::string::npos) << row.order << reply;
    }
}

// Any site that a person visits can send requests to this machine; a program is no browser and needs no token.
TEST(SandboxControl, OtherSitesAreKeptOut) {
    SandboxServer sandbox;
    const std::wstring base = Wide(sandbox.m_http);
    const std::wstring port = base.substr(base.rfind(L':'));
    const std::wstring token = TokenOf(sandbox);
    ASSERT_EQ(token.size(), 32U);
    const std::string withToken = "/sandbox/session?token=" + Narrow(token);
    const std::string session = "/sandbox/session";
    const std::string route = "/routing/v1/remote";
    const struct {
        int status;
        std::string path;
        HeaderMap headers;
    } rows[] = {
        {200, session, {}},
        {200, session, {{L"Host", L"localhost" + port}}},
        {200, session, {{L"Host", L"LOCALHOST"}}},
        {200, "/", {{L"Host", L"[::1]:80"}}},
        {403, session, {{L"Host", L"evil.example"}}},
        {403, "/sign-in", {{L"Host", L"evil.example"}}},
        {403, "/page/page.js", {{L"Host", L"evil.example"}}},
        {403, "/", {{L"Host", L"127.0.0.1.evil.example" + port}}},
        {403, "/", {{L"Host", L"localhost.evil"}}},
        {403, "/", {{L"Host", L"127.0.0.1:"}}},
        {403, "/", {{L"Host", L"127.0.0.1:80x"}}},
        {403, "/", {{L"Host", L"[::1].evil"}}},
        {200, route, {{L"Host", L"evil.example"}}},
        {200, route, {{L"Origin", base}}},
        {403, route, {{L"Origin", L"http://evil.example"}}},
        {403, route, {{L"Origin", L"http://evil.example"}, {L"Host", L"evil.example"}}},
        {403, route, {{L"Origin", L"http://127.0.0.1:1"}}},
        {200, session, {{L"Origin", base}, {L"X-Sandbox-Token", token}}},
        {200, withToken, {{L"Origin", base}}},
        {200, session, {{L"Sec-Fetch-Site", L"same-origin"}, {L"X-Sandbox-Token", token}}},
        {403, session, {{L"Origin", base}}},
        {403, session, {{L"Origin", base}, {L"X-Sandbox-Token", token.substr(1)}}},
        {403, session, {{L"Origin", base}, {L"X-Sandbox-Token", L""}}},
        {403, withToken + "0", {{L"Origin", base}}},
        {403, session, {{L"Origin", L"null"}, {L"X-Sandbox-Token", token}}},
        {403, session, {{L"Origin", L"http://evil.example"}, {L"X-Sandbox-Token", token}}},
        {403, session, {{L"Sec-Fetch-Site", L"cross-site"}}},
        {403, "/sandbox/events", {{L"Sec-Fetch-Site", L"same-origin"}}},
    };
    for (const auto& row : rows) {
        std::string name = row.path;
        for (const auto& [header, value] : row.headers) {
            name += " " + Narrow(header) + ": " + Narrow(value);
        }
        EXPECT_EQ(Ask(sandbox, row.path, row.headers).substr(0, 4), std::to_string(row.status) + " ") << name;
    }
    const SandboxServer another;
    EXPECT_NE(TokenOf(another), token) << "each has a token of its own";
    EXPECT_EQ(Ask(sandbox, "/sandbox/sign-out", {{L"Origin", L"http://evil.example"}}, "{}").substr(0, 4), "403 ");
    EXPECT_EQ(Ask(sandbox, "/sandbox/sign-out", {}, "{}").substr(0, 4), "200 ") << "control step";
}

using SandboxState = SandboxSession;

TEST_F(SandboxState, CodesAndTokensLastAsLongAsThePlatformSays) {
    const auto advance = [this](int seconds) {
        m_sandbox.Control("/sandbox/clock", R"({"advanceSeconds":)" + std::to_string(seconds) + "}");
    };
    constexpr int kSlack = 40;  // real time passes as well
    constexpr int kHalfYear = 180 * 24 * 3600;
    std::string code = SignIn();
    advance(300 - kSlack);
    EXPECT_TRUE(m_service->RequestAT("", code.c_str())) << LogText();
    code = SignIn();
    advance(300 + 1);
    EXPECT_FALSE(m_service->RequestAT("", code.c_str())) << "the code has expired";
    SignInWhole();
    advance(3600 - kSlack);
    EXPECT_TRUE(m_service->RequestUserID());
    advance(kSlack + 1);
    EXPECT_FALSE(m_service->RequestUserID()) << "the access token has expired";
    advance(kHalfYear - 3600 - 2 * kSlack);
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    advance(2 * kSlack);
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken()) << "the refresh token has expired";
}

TEST_F(SandboxState, TokensAreRevokedByTheirKindAndBelongToTheirUser) {
    SignInWhole();
    EXPECT_EQ(m_sandbox.Control("/sandbox/revoke", R"({"kind":"access"})")["revoked"], 1);
    EXPECT_FALSE(m_service->RequestUserID());
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(m_service->RequestUserID());
    int callbacks = 0;
    m_service->SetAtExpireCallback([&callbacks] { ++callbacks; });
    m_service->SetCurrrentUserID(L"260086000100000003");
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken()) << "the refresh token is another user's";
    EXPECT_EQ(callbacks, 0) << "a wrong request, not a refused token";
    m_service->SetCurrrentUserID(L"");
    EXPECT_EQ(m_sandbox.Control("/sandbox/revoke", R"({"kind":"refresh"})")["revoked"], 1);
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(callbacks, 1);
    m_service->SetAtExpireCallback(nullptr);
}
