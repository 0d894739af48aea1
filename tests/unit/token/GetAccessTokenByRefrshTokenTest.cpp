#include <HttpLib.h>

#include <thread>

#include "ServiceFixture.h"

namespace {

using Lines = std::vector<std::string>;

std::string Log(const std::string& severity, const std::string& message) {
    return "log 10 " + severity + " UserAuthService::GetAccessTokenByRefrshToken " + message;
}

const std::string kStart = Log("2", "refresh AT start");
const std::string kEvent = "event 321 0 0";
std::string Failed(const std::string& status) { return Log("5", "refresh AT error statusCode: " + status); }

class Refresh : public ServiceTest {
protected:
    Refresh() {
        m_service->SetCurrentRT(L"rt-\u00E9");
        m_service->SetCurrrentUserID(L"uid");
        m_service->SetCurrentAT(L"before");
        Recording().journal.clear();
    }
};

}  // namespace

TEST_F(Refresh, SendsFourHeadersAndTheNullBody) {
    m_service->GetAccessTokenByRefrshToken();
    EXPECT_EQ(Recording().requestHeaders,
              (std::map<std::wstring, std::wstring>{{L"refreshToken", L"rt-\u00E9"},
                                                    {L"deviceId", L"00112233445566778899aabbccddeeff"},
                                                    {L"userId", L"uid"},
                                                    {L"Cookie", L"siteID=1"}}));
    EXPECT_EQ(Recording().postData, L"null\n");
    EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 1"});
    EXPECT_EQ(Recording().url.substr(0, 66), L"https://portal.example.com/pcclient/refreshtoken?traceId=10005_11_");
}

TEST_F(Refresh, Outcomes) {
    const Lines expired = {kStart, kEvent, Log("2", "atExpireCallback"), Failed("200")};
    const struct {
        const char* name;
        int status;
        std::string body;
        bool result;
        Lines outcome;
        int callbacks;
    } rows[] = {
        {"token",
         200,
         R"({"result":null,"token":"new"})",
         true,
         {kStart, kEvent, "store SetCurrentAt new", Log("2", "refresh AT success"), "store SetAtIsExpired false"},
         0},
        {"ANSI token",
         200,
         "{\"result\":[],\"token\":\"\xC3\xA9\"}",
         true,
         {kStart, kEvent, "store SetCurrentAt \xC3\x83\xC2\xA9", Log("2", "refresh AT success"),
          "store SetAtIsExpired false"},
         0},
        {"no result", 200, R"({"token":"new"})", false, expired, 1},
        {"no token", 200, R"({"result":{"code":"1"}})", false, expired, 1},
        {"empty token", 200, R"({"result":0,"token":""})", false, expired, 1},
        {"mistyped token", 200, R"({"result":0,"token":{"a":1}})", false, expired, 1},
        {"array", 200, R"(["result","token"])", false, expired, 1},
        {"not JSON", 200, "<html>", false, expired, 1},
        {"deep", 200, std::string(40000, '['), false, expired, 1},
        {"unauthorised", 401, R"({"result":0,"token":"new"})", false, {kStart, kEvent, Failed("401")}, 0},
        {"created", 201, R"({"result":0,"token":"new"})", false, {kStart, kEvent, Failed("201")}, 0},
        {"no exchange", kHttpTimeout, "", false, {kStart, kEvent, Failed("-4")}, 0},
    };
    int callbacks = 0;
    m_service->SetAtExpireCallback([&] { ++callbacks; });
    for (const auto& row : rows) {
        callbacks = 0;
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->GetAccessTokenByRefrshToken(), row.result) << row.name;
        EXPECT_EQ(Recording().TakeOutcome(), row.outcome) << row.name;
        EXPECT_EQ(callbacks, row.callbacks) << row.name;
        EXPECT_EQ(m_service->GetCurrentRT(), L"rt-\u00E9") << row.name;
    }
}

TEST_F(Refresh, WithoutRefreshTokenNothingIsSent) {
    m_service->SetCurrentRT(L"");
    Recording().journal.clear();
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(Recording().journal, (Lines{kStart, Log("5", "refresh AT error rt is empty")}));
}

TEST_F(Refresh, WithoutCallbackThereIsNoLineForIt) {
    m_service->SetAtExpireCallback([] { FAIL() << "replaced below"; });
    m_service->SetAtExpireCallback(nullptr);
    Recording().replies = {{200, "{}", {}}};
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(Recording().TakeOutcome(), (Lines{kStart, kEvent, Failed("200")}));
}

TEST_F(Refresh, TheCallbackKeepsWhatItCounts) {
    std::vector<int> seen;
    m_service->SetAtExpireCallback([&seen, n = 0]() mutable { seen.push_back(++n); });
    Recording().replies = {{200, "{}", {}}, {200, "{}", {}}};
    m_service->GetAccessTokenByRefrshToken();
    m_service->GetAccessTokenByRefrshToken();
    EXPECT_EQ(seen, (std::vector<int>{1, 2}));
}

TEST_F(Refresh, TheCallbackMayDoAnything) {
    const std::thread::id caller = std::this_thread::get_id();
    bool nested = false;
    m_service->SetAtExpireCallback([&] {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        m_service->SetCurrentAT(L"set inside");
        std::thread([&] { EXPECT_EQ(m_service->GetCurrentAT(), L"set inside"); }).join();
        m_service->SetAtExpireCallback(nullptr);
        m_service->Clear();
        m_service->SetCurrentRT(L"again");
        nested = m_service->GetAccessTokenByRefrshToken();
        throw 1;
    });
    Recording().replies = {{200, "{}", {}}, {200, R"({"result":0,"token":"nested"})", {}}};
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(nested);
    EXPECT_EQ(m_service->GetCurrentAT(), L"nested");
    EXPECT_EQ(Recording().TakeOutcome().back(), Failed("200"));
}

TEST_F(Refresh, HoldsNoLockDuringTheExchange) {
    bool entered = false;
    Recording().duringExchange = [&](const std::wstring&) {
        entered = true;
        m_service->Clear();
        std::thread([&] { m_service->GetCurrentRT(); }).join();
    };
    Recording().replies = {{200, R"({"result":0,"token":"late"})", {}}};
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(entered);
    EXPECT_EQ(m_service->GetCurrentAT(), L"late") << "a token that arrives after Clear is stored";
}
