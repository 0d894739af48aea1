#include "ServiceFixture.h"

using RequestApplicationAT = ServiceTest;

TEST_F(RequestApplicationAT, Outcomes) {
    const auto stored = [](const std::string& token) {
        return Store("SetAppAT", token) + Log("2", "RequestApplicationAT", "Get ApplyAT successed!");
    };
    const struct : ReplyRow {
        Lines stored;
        const char* code;
        int expires;
    } rows[] = {
        {"good", 200, R"({"accessToken":"app","expires":7200,"result":{"code":"0"}})", true, stored("app"), "\"0\"\n",
         7200},
        {"not found", 404, "{}", false, {}, "\"0\"\n", 7200},
        {"number as code, ANSI token", 200, "{\"accessToken\":\"\xC3\xA9\",\"result\":{\"code\":0}}", true,
         stored("\xC3\x83\xC2\xA9"), "0\n", 0},
        {"nothing usable", 200, "[1]", true, stored(""), "null\n", 0},
    };
    m_service->SetCurrentAT(L"user token");
    for (const auto& row : rows) {
        EXPECT_EQ(Outcome(row, &UserAuthService::RequestApplicationAT),
                  row.stored +
                      Log("5", "RequestApplicationAT", "Get ApplyAT Failed! httpcode = " + std::to_string(row.status)))
            << row.name << ": the last line comes after a success too";
        EXPECT_EQ(UserAuthServiceAccess::ResultCode(*m_service), row.code) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::ApplicationExpires(*m_service), row.expires) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::Expires(*m_service), 0) << "the user's token has a lifetime of its own";
    }
    EXPECT_EQ(Recording().requestHeaders.at(L"Authorization"), L"user token");
    EXPECT_EQ(Recording().postData, L"null\n");
    EXPECT_EQ(Recording().url.substr(0, 70), L"https://portal.example.com/pcclient/getAppAccessToken?traceId=10006_11");
}
