#include "ServiceFixture.h"

TEST_F(ServiceTest, RequestApplicationATOutcomes) {
    const std::string tag = " UserAuthService::RequestApplicationAT ";
    const std::string succeeded = "log 10 2" + tag + "Get ApplyAT successed!";
    const std::string failed = "log 10 5" + tag + "Get ApplyAT Failed! httpcode = ";
    const struct {
        const char* name;
        int status;
        const char* body;
        bool result;
        std::vector<std::string> outcome;
        const char* code;
        int expires;
    } rows[] = {
        {"good",
         200,
         R"({"accessToken":"app","expires":7200,"result":{"code":"0"}})",
         true,
         {"store SetAppAT app", succeeded, failed + "200"},
         "\"0\"\n",
         7200},
        {"not found", 404, "{}", false, {failed + "404"}, "\"0\"\n", 7200},
        {"number as code, ANSI token",
         200,
         "{\"accessToken\":\"\xC3\xA9\",\"result\":{\"code\":0}}",
         true,
         {"store SetAppAT \xC3\x83\xC2\xA9", succeeded, failed + "200"},
         "0\n",
         0},
        {"nothing usable", 200, "[1]", true, {"store SetAppAT ", succeeded, failed + "200"}, "null\n", 0},
    };
    m_service->SetCurrentAT(L"user token");
    for (const auto& row : rows) {
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->RequestApplicationAT(), row.result) << row.name;
        EXPECT_EQ(Recording().TakeOutcome(), row.outcome) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::ResultCode(*m_service), row.code) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::ApplicationExpires(*m_service), row.expires) << row.name;
    }
    EXPECT_EQ(Recording().requestHeaders.at(L"Authorization"), L"user token");
    EXPECT_EQ(Recording().postData, L"null\n");
    EXPECT_EQ(Recording().url.substr(0, 70), L"https://portal.example.com/pcclient/getAppAccessToken?traceId=10006_11");
}
