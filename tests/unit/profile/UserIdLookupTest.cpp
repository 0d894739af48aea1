#include <HttpLib.h>

#include "ServiceFixture.h"

namespace {

using Lines = std::vector<std::string>;

struct Row {
    const char* name;
    int status;
    std::string body;
    bool result;
    Lines pushed;
};

}  // namespace

TEST_F(ServiceTest, RequestUserIDReadsTheAnsiId) {
    const Row rows[] = {
        {"id", 200, "{\"uid\":\"\xC3\xA9\"}", true, {"store SetUserID \xC3\x83\xC2\xA9"}},
        {"empty id clears", 200, R"({"uid":""})", true, {"store SetUserID "}},
        {"mistyped id clears", 200, R"({"uid":7})", true, {"store SetUserID "}},
        {"array", 200, "[]", true, {"store SetUserID "}},
        {"unauthorised", 401, R"({"uid":"x"})", false, {}},
        {"no exchange", kHttpConnectFailed, "", false, {}},
    };
    m_service->SetCurrentAT(L"a+/= \u00E9");
    for (const auto& row : rows) {
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->RequestUserID(), row.result) << row.name;
        Lines expected = {
            "log 10 0 UserAuthService::RequestUserID RequestUserID\nUrl:https://gateway.example.com?access_token="
            "a%2B%2F%3D+%E9&nsp_fmt=JSON&nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID\nHttpCode:" +
            std::to_string(row.status)};
        expected.insert(expected.end(), row.pushed.begin(), row.pushed.end());
        EXPECT_EQ(Recording().TakeOutcome(), expected) << row.name;
    }
    EXPECT_TRUE(Recording().requestHeaders.empty());
    EXPECT_EQ(Recording().postData, L"null\n");
}

TEST_F(ServiceTest, RequestUserIdFromSyncServerReadsTheUtf8Id) {
    const Row rows[] = {
        {"id",
         200,
         "{\"user\":{\"userId\":\"\xF0\x9F\x98\x80\xC3\xA9\"}}",
         true,
         {"store SetUserID \xF0\x9F\x98\x80\xC3\xA9"}},
        {"no user", 200, "{}", true, {"store SetUserID "}},
        {"mistyped user", 200, R"({"user":"userId"})", true, {"store SetUserID "}},
        {"server error", 503, R"({"user":{"userId":"x"}})", false, {}},
    };
    Singleton().SetCurrentAT(L"token");
    for (const auto& row : rows) {
        const std::string tag = " UserAuthService::RequestUserIdFromSyncServer ";
        const std::string status = std::to_string(row.status);
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->RequestUserIdFromSyncServer(), row.result) << row.name;
        Lines expected = {
            "log 10 2" + tag + "RequestUserId httpcode=" + status,
            "log 10 0" + tag +
                "RequestUserId\nUrl:https://sync.example.com/drive/v1/about?fields=user(userId)\nHttpCode:" + status};
        expected.insert(expected.end(), row.pushed.begin(), row.pushed.end());
        EXPECT_EQ(Recording().TakeOutcome(), expected) << row.name;
    }
    EXPECT_EQ(Recording().requestHeaders, (std::map<std::wstring, std::wstring>{{L"Authorization", L"Bearer token"}}));
}
