#include <HttpLib.h>

#include "AccountFields.h"
#include "ServiceFixture.h"

namespace {

using RequestAT = ServiceTest;
constexpr char kOperation[] = "RequestAT";

Lines Progress(const std::string& message) { return Log("2", kOperation, message); }

// What the reply's tokens leave, and the end of an operation that came to its summary.
Lines Stored(const std::string& accessToken, const std::string& refreshToken) {
    return Progress("RequestCountryCode httpcode:200") + Store("SetCurrentAt", accessToken) +
           Store("SetCurrentRt", refreshToken);
}
Lines WithoutCountry(const std::string& accessToken, const std::string& refreshToken) {
    return Stored(accessToken, refreshToken) + Log("5", kOperation, "Get registerCountryCode from portal fail");
}
Lines Country(const std::string& country) {
    return Progress("Get registerCountryCode successed:" + country) + Progress("Get AT successed!");
}
Lines Ending(const std::string& status, const std::string& resultCode) {
    return Log("0", kOperation,
               "RequestAT\nUrl:https://portal.example.com/pcclient/getAccessTokenByCode?traceId=\nHttpCode:" + status +
                   "\nResultCode:" + resultCode + "\nDescription:") +
           Lines{"event 250 5 0"};
}
Lines Failed(const std::string& status) {
    return Progress("RequestCountryCode httpcode:" + status) + Ending(status, "before");
}

const std::string kGood = R"({"accessToken":"at","refreshToken":"rt","registerCountryCode":"TH","expires":3600,)"
                          R"("oauthHttpStatusCode":201,"oauthSubErrorCode":7,)";

}  // namespace

TEST_F(RequestAT, SendsTheSecondArgument) {
    m_service->RequestAT("first", "second");
    const std::wstring trace = Recording().requestHeaders.at(L"x-zv-trace-id");
    EXPECT_EQ(Recording().url, L"https://portal.example.com/pcclient/getAccessTokenByCode?traceId=" + trace);
    EXPECT_EQ(Recording().postData, L"{\"authorizationCode\":\"second\",\"traceId\":\"" + trace + L"\"}\n");
    EXPECT_EQ(trace.substr(0, 9), L"10006_11_");
    EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 1"});
    EXPECT_EQ(Recording().requestHeaders.at(L"Authorization"), L"");
    EXPECT_EQ(Recording().requestHeaders.at(L"Cookie"), L"siteID=1");
    EXPECT_FALSE(m_service->RequestAT("first", nullptr));
    EXPECT_EQ(Recording().postData.substr(0, 24), L"{\"authorizationCode\":\"\",");
}

TEST_F(RequestAT, Outcomes) {
    const Lines tokens = Stored("at", "rt") + Country("TH");
    const struct : ReplyRow {
        Lines outcome;
        const char* code = "before";
        const char* description = "before";
    } rows[] = {
        {"text code", 200, kGood + R"("result":{"code":"0","desc":"fine"}})", true, tokens + Ending("200", "0"), "0",
         "\"fine\"\n"},
        {"numeric code", 200, kGood + R"("result":{"code":0,"desc":{}}})", true, tokens + Ending("200", "0"), "0",
         "{}\n"},
        {"a comment becomes part of the code", 200, kGood + "\"result\":{\"code\":\"0\" /* \xC3\xA9 */,\"desc\":\"\"}}",
         false, tokens + Ending("200", "0 /* \xC3\xA9 */"), "0 /* \xC3\xA9 */", "\"\"\n"},
        {"other code", 200, kGood + R"("result":{"code":"00","desc":"x"}})", false, tokens + Ending("200", "00"), "00",
         "\"x\"\n"},
        {"code of many lines and quotes", 200, kGood + R"("result":{"code":{"A":"b"},"desc":""}})", false,
         tokens + Ending("200", "{\tA : b}"), "{\tA : b}", "\"\"\n"},
        {"result of another type", 200, kGood + R"("result":["0"]})", false, tokens + Ending("200", "null"), "null",
         "null\n"},
        {"ANSI decoding", 200,
         "{\"accessToken\":\"\xC3\xA9\",\"refreshToken\":\"\xE2\x82\xAC\",\"registerCountryCode\":\"\xC3\x89\","
         "\"result\":{\"code\":\"0\"}}",
         true,
         Stored("\xC3\x83\xC2\xA9", "\xC3\xA2\xE2\x80\x9A\xC2\xAC") + Country("\xC3\x83\xE2\x80\xB0") +
             Ending("200", "0"),
         "0", "null\n"},
        {"no country", 200,
         R"({"accessToken":"at","refreshToken":"rt","registerCountryCode":"","result":{"code":"0"}})", false,
         WithoutCountry("at", "rt")},
        {"no access token", 200, R"({"refreshToken":"rt","registerCountryCode":"TH"})", false,
         WithoutCountry("", "rt")},
        {"mistyped tokens", 200, R"({"accessToken":1,"refreshToken":[],"registerCountryCode":{}})", false,
         WithoutCountry("", "")},
        {"array at the root", 200, "[1]", false, WithoutCountry("", "")},
        {"not JSON", 200, "<html>", false, WithoutCountry("", "")},
        {"nested too deep", 200, std::string(40000, '['), false, WithoutCountry("", "")},
        {"server error", 500, kGood + R"("result":{"code":"0"}})", false, Failed("500")},
        {"created is not success", 201, kGood + "}", false, Failed("201")},
        {"no exchange", kHttpConnectFailed, "", false, Failed("-3")},
    };
    std::string& code = UserAuthServiceAccess::ResultCode(*m_service);
    std::string& description = UserAuthServiceAccess::ResultDescription(*m_service);
    for (const auto& row : rows) {
        code = description = "before";
        EXPECT_EQ(Outcome(row, [](auto& service) { return service.RequestAT("", "code"); }), row.outcome) << row.name;
        EXPECT_EQ(code, row.code) << row.name;
        EXPECT_EQ(description, row.description) << row.name;
    }
}

TEST_F(RequestAT, KeepsWhatAFailingPathDoesNotReach) {
    Recording().replies = {{200, kGood + R"("result":{"code":"0"}})", {}},
                           {500, "", {}},
                           {200, R"({"accessToken":"at2","expires":1})", {}}};
    ASSERT_TRUE(m_service->RequestAT("", "code"));
    EXPECT_FALSE(m_service->RequestAT("", "code"));
    EXPECT_EQ(AccountFields(*m_service),
              (Fields{{"access token", L"at"}, {"refresh token", L"rt"}, {"country", L"TH"}}));
    EXPECT_FALSE(m_service->RequestAT("", "code"));
    EXPECT_EQ(AccountFields(*m_service), (Fields{{"access token", L"at2"}}));
    EXPECT_EQ(UserAuthServiceAccess::Expires(*m_service), 3600);
    EXPECT_EQ(UserAuthServiceAccess::OauthStatus(*m_service), 201);
    EXPECT_EQ(UserAuthServiceAccess::OauthSubError(*m_service), 7);
}
