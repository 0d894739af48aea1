#include <HttpLib.h>

#include <thread>

#include "ServiceFixture.h"
#include "token/ReplaceAllIgnoringCase.h"

namespace {

using Lines = std::vector<std::string>;

std::string Log(const std::string& severity, const std::string& message) {
    return "log 10 " + severity + " UserAuthService::RequestAT " + message;
}

Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const std::string kStatusLine = "RequestCountryCode httpcode:";

Lines Ending(const std::string& status, const std::string& resultCode) {
    return {Log("0", "RequestAT\nUrl:https://portal.example.com/pcclient/getAccessTokenByCode?traceId=\nHttpCode:" +
                         status + "\nResultCode:" + resultCode + "\nDescription:"),
            "event 250 5 0"};
}

Lines Stored(const std::string& accessToken, const std::string& refreshToken) {
    return {Log("2", kStatusLine + "200"), "store SetCurrentAt " + accessToken, "store SetCurrentRt " + refreshToken};
}

Lines Exchanged(const std::string& country) {
    return {Log("2", "Get registerCountryCode successed:" + country), Log("2", "Get AT successed!")};
}

const Lines kNoCountry = {Log("5", "Get registerCountryCode from portal fail")};

}  // namespace

TEST_F(ServiceTest, RequestATSendsTheSecondArgument) {
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

TEST_F(ServiceTest, RequestATOutcomes) {
    const std::string rest = R"("expires":3600,"oauthHttpStatusCode":201,"oauthSubErrorCode":7,)";
    const std::string good = R"({"accessToken":"at","refreshToken":"rt","registerCountryCode":"TH",)" + rest;
    const struct {
        const char* name;
        int status;
        std::string body;
        bool result;
        Lines outcome;
        std::string code;
        std::string description;
    } rows[] = {
        {"text code", 200, good + R"("result":{"code":"0","desc":"fine"}})", true,
         Stored("at", "rt") + Exchanged("TH") + Ending("200", "0"), "0", "\"fine\"\n"},
        {"numeric code", 200, good + R"("result":{"code":0,"desc":{}}})", true,
         Stored("at", "rt") + Exchanged("TH") + Ending("200", "0"), "0", "{}\n"},
        {"other code", 200, good + R"("result":{"code":"00","desc":"x"}})", false,
         Stored("at", "rt") + Exchanged("TH") + Ending("200", "00"), "00", "\"x\"\n"},
        {"result of another type", 200, good + R"("result":["0"]})", false,
         Stored("at", "rt") + Exchanged("TH") + Ending("200", "null"), "null", "null\n"},
        {"ANSI decoding", 200,
         "{\"accessToken\":\"\xC3\xA9\",\"refreshToken\":\"\xE2\x82\xAC\",\"registerCountryCode\":\"\xC3\x89\","
         "\"result\":{\"code\":\"0\"}}",
         true,
         Stored("\xC3\x83\xC2\xA9", "\xC3\xA2\xE2\x80\x9A\xC2\xAC") + Exchanged("\xC3\x83\xE2\x80\xB0") +
             Ending("200", "0"),
         "0", "null\n"},
        {"no country", 200,
         R"({"accessToken":"at","refreshToken":"rt","registerCountryCode":"","result":{"code":"0"}})", false,
         Stored("at", "rt") + kNoCountry, "before", "before"},
        {"no access token", 200, R"({"refreshToken":"rt","registerCountryCode":"TH"})", false,
         Stored("", "rt") + kNoCountry, "before", "before"},
        {"mistyped tokens", 200, R"({"accessToken":1,"refreshToken":[],"registerCountryCode":{}})", false,
         Stored("", "") + kNoCountry, "before", "before"},
        {"array at the root", 200, "[1]", false, Stored("", "") + kNoCountry, "before", "before"},
        {"not JSON", 200, "<html>", false, Stored("", "") + kNoCountry, "before", "before"},
        {"nested too deep", 200, std::string(40000, '['), false, Stored("", "") + kNoCountry, "before", "before"},
        {"server error", 500, good + R"("result":{"code":"0"}})", false,
         Lines{Log("2", kStatusLine + "500")} + Ending("500", "before"), "before", "before"},
        {"created is not success", 201, good + "}", false,
         Lines{Log("2", kStatusLine + "201")} + Ending("201", "before"), "before", "before"},
        {"no exchange", kHttpConnectFailed, "", false, Lines{Log("2", kStatusLine + "-3")} + Ending("-3", "before"),
         "before", "before"},
    };
    for (const auto& row : rows) {
        UserAuthServiceAccess::SetResult(*m_service, "before", "before");
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->RequestAT("", "code"), row.result) << row.name;
        EXPECT_EQ(Recording().TakeOutcome(), row.outcome) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::ResultCode(*m_service), row.code) << row.name;
        EXPECT_EQ(UserAuthServiceAccess::ResultDescription(*m_service), row.description) << row.name;
    }
}

TEST_F(ServiceTest, RequestATKeepsWhatAFailingPathDoesNotReach) {
    Recording().replies = {{200,
                            R"({"accessToken":"at","refreshToken":"rt","registerCountryCode":"TH","expires":3600,)"
                            R"("oauthHttpStatusCode":201,"oauthSubErrorCode":7,"result":{"code":"0"}})",
                            {}},
                           {500, "", {}},
                           {200, R"({"accessToken":"at2","expires":1})", {}}};
    ASSERT_TRUE(m_service->RequestAT("", "code"));
    EXPECT_FALSE(m_service->RequestAT("", "code"));
    EXPECT_EQ(m_service->GetCurrentAT() + m_service->GetCurrentRT() + m_service->GetCurrentCountryCode(), L"atrtTH");
    EXPECT_FALSE(m_service->RequestAT("", "code"));
    EXPECT_EQ(m_service->GetCurrentAT() + m_service->GetCurrentRT() + m_service->GetCurrentCountryCode(), L"at2");
    EXPECT_EQ(UserAuthServiceAccess::Expires(*m_service), 3600);
    EXPECT_EQ(UserAuthServiceAccess::OauthStatus(*m_service), 201);
    EXPECT_EQ(UserAuthServiceAccess::OauthSubError(*m_service), 7);
}

// Getters and Clear must answer in the middle of an exchange, on other threads and on this one.
TEST_F(ServiceTest, RequestATHoldsNoLockDuringTheExchange) {
    bool entered = false;
    Recording().duringExchange = [&](const std::wstring&) {
        entered = true;
        m_service->Clear();
        std::thread([&] { m_service->GetCurrentAT(); }).join();
    };
    m_service->RequestAT("", "code");
    EXPECT_TRUE(entered);
}

TEST(ReplaceAllIgnoringCase, ReplacesEveryOccurrenceWhateverItsCase) {
    const struct {
        const char *subject, *pattern, *replacement, *expected;
    } rows[] = {{"\"0\"\n", "\"", "", "0\n"}, {"aXbxc", "x", "--", "a--b--c"},
                {"aaa", "aa", "b", "ba"},     {"abc", "", "x", "abc"},
                {"", "a", "x", ""},           {"ab", "abc", "x", "ab"},
                {"AbAB", "ab", "ab", "abab"}};
    for (const auto& row : rows) {
        std::string subject = row.subject;
        userauth::ReplaceAllIgnoringCase(subject, row.pattern, row.replacement);
        EXPECT_EQ(subject, row.expected) << row.subject;
    }
}
