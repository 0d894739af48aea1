#include <HttpLib.h>

#include "ServiceFixture.h"

using UserIdLookup = ServiceTest;

namespace {

struct Row : ReplyRow {
    Lines pushed;
};

Lines Pushed(const std::string& userId) { return Store("SetUserID", userId); }

}  // namespace

TEST_F(UserIdLookup, RequestUserIDReadsTheAnsiId) {
    const Row rows[] = {
        {"id", 200, "{\"uid\":\"\xC3\xA9\"}", true, Pushed("\xC3\x83\xC2\xA9")},
        {"empty id clears", 200, R"({"uid":""})", true, Pushed("")},
        {"mistyped id clears", 200, R"({"uid":7})", true, Pushed("")},
        {"array", 200, "[]", true, Pushed("")},
        {"unauthorised", 401, R"({"uid":"x"})", false, {}},
        {"no exchange", kHttpConnectFailed, "", false, {}},
    };
    m_service->SetCurrentAT(L"a+/= \u00E9");
    for (const auto& row : rows) {
        const Lines summary =
            Log("0", "RequestUserID",
                "RequestUserID\nUrl:https://gateway.example.com?access_token=a%2B%2F%3D+%E9&nsp_fmt=JSON"
                "&nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID\nHttpCode:" +
                    std::to_string(row.status));
        EXPECT_EQ(Outcome(row, &UserAuthService::RequestUserID), summary + row.pushed) << row.name;
    }
    EXPECT_TRUE(Recording().requestHeaders.empty());
    EXPECT_EQ(Recording().postData, L"null\n");
}

TEST_F(UserIdLookup, RequestUserIdFromSyncServerReadsTheUtf8Id) {
    const Row rows[] = {
        {"id", 200, "{\"user\":{\"userId\":\"\xF0\x9F\x98\x80\xC3\xA9\"}}", true, Pushed("\xF0\x9F\x98\x80\xC3\xA9")},
        {"no user", 200, "{}", true, Pushed("")},
        {"mistyped user", 200, R"({"user":"userId"})", true, Pushed("")},
        {"server error", 503, R"({"user":{"userId":"x"}})", false, {}},
    };
    constexpr char kOperation[] = "RequestUserIdFromSyncServer";
    Singleton().SetCurrentAT(L"token");
    for (const auto& row : rows) {
        const std::string status = std::to_string(row.status);
        EXPECT_EQ(Outcome(row, &UserAuthService::RequestUserIdFromSyncServer),
                  Log("2", kOperation, "RequestUserId httpcode=" + status) +
                      Log("0", kOperation,
                          "RequestUserId\nUrl:https://sync.example.com/drive/v1/about?fields=user(userId)\nHttpCode:" +
                              status) +
                      row.pushed)
            << row.name;
    }
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"Authorization", L"Bearer token"}}));
}
