#include <HttpLib.h>

#include <thread>

#include "ServiceFixture.h"

namespace {

constexpr char kOperation[] = "GetAccessTokenByRefrshToken";

const Lines kStart = Log("2", kOperation, "refresh AT start");
const Lines kSent = kStart + Lines{"event 321 0 0"};
Lines Refreshed(const std::string& token) {
    return kSent + Store("SetCurrentAt", token) + Log("2", kOperation, "refresh AT success") +
           Store("SetAtIsExpired", "false");
}
Lines Failed(const std::string& status) { return Log("5", kOperation, "refresh AT error statusCode: " + status); }

class GetAccessTokenByRefrshToken : public ServiceTest {
protected:
    GetAccessTokenByRefrshToken() {
        m_service->SetCurrentRT(L"rt-\u00E9");
        m_service->SetCurrrentUserID(L"uid");
        m_service->SetCurrentAT(L"before");
        Recording().journal.clear();
        Recording().replies = {{200, "{}", {}}, {200, "{}", {}}};  // as to an expired refresh token
    }
};

}  // namespace

TEST_F(GetAccessTokenByRefrshToken, SendsFourHeadersAndTheNullBody) {
    m_service->GetAccessTokenByRefrshToken();
    EXPECT_EQ(Recording().requestHeaders, (Headers{{L"refreshToken", L"rt-\u00E9"},
                                                   {L"deviceId", L"00112233445566778899aabbccddeeff"},
                                                   {L"userId", L"uid"},
                                                   {L"Cookie", L"siteID=1"}}));
    EXPECT_EQ(Recording().postData, L"null\n");
    EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 1"});
    EXPECT_EQ(Recording().url.substr(0, 66), L"https://portal.example.com/pcclient/refreshtoken?traceId=10005_11_");
}

TEST_F(GetAccessTokenByRefrshToken, Outcomes) {
    const Lines expired = kSent + Log("2", kOperation, "atExpireCallback") + Failed("200");
    const std::string good = R"({"result":0,"token":"new"})";
    const struct : ReplyRow {
        Lines outcome;
    } rows[] = {
        {"token", 200, R"({"result":null,"token":"new"})", true, Refreshed("new")},
        {"ANSI token", 200, "{\"result\":[],\"token\":\"\xC3\xA9\"}", true, Refreshed("\xC3\x83\xC2\xA9")},
        {"no result", 200, R"({"token":"new"})", false, expired},
        {"no token", 200, R"({"result":{"code":"1"}})", false, expired},
        {"empty token", 200, R"({"result":0,"token":""})", false, expired},
        {"mistyped token", 200, R"({"result":0,"token":{"a":1}})", false, expired},
        {"array", 200, R"(["result","token"])", false, expired},
        {"not JSON", 200, "<html>", false, expired},
        {"deep", 200, std::string(40000, '['), false, expired},
        {"unauthorised", 401, good, false, kSent + Failed("401")},
        {"created", 201, good, false, kSent + Failed("201")},
        {"no exchange", kHttpTimeout, "", false, kSent + Failed("-4")},
    };
    int callbacks = 0;
    m_service->SetAtExpireCallback([&] { ++callbacks; });
    for (const auto& row : rows) {
        callbacks = 0;
        EXPECT_EQ(Outcome(row, &UserAuthService::GetAccessTokenByRefrshToken), row.outcome) << row.name;
        EXPECT_EQ(callbacks, row.outcome == expired ? 1 : 0) << row.name;
        EXPECT_EQ(m_service->GetCurrentRT(), L"rt-\u00E9") << row.name;
    }
}

TEST_F(GetAccessTokenByRefrshToken, WithoutRefreshTokenNothingIsSent) {
    m_service->SetCurrentRT(L"");
    Recording().journal.clear();
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(Recording().journal, kStart + Log("5", kOperation, "refresh AT error rt is empty"));
}

TEST_F(GetAccessTokenByRefrshToken, WithoutCallbackThereIsNoLineForIt) {
    m_service->SetAtExpireCallback([] { FAIL() << "replaced below"; });
    m_service->SetAtExpireCallback(nullptr);
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(Recording().TakeOutcome(), kSent + Failed("200"));
}

TEST_F(GetAccessTokenByRefrshToken, TheCallbackKeepsWhatItCounts) {
    std::vector<int> seen;
    m_service->SetAtExpireCallback([&seen, n = 0]() mutable { seen.push_back(++n); });
    m_service->GetAccessTokenByRefrshToken();
    m_service->GetAccessTokenByRefrshToken();
    EXPECT_EQ(seen, (std::vector<int>{1, 2}));
}

TEST_F(GetAccessTokenByRefrshToken, TheCallbackMayDoAnything) {
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
    Recording().replies[1].body = R"({"result":0,"token":"nested"})";
    EXPECT_FALSE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_TRUE(nested);
    EXPECT_EQ(m_service->GetCurrentAT(), L"nested");
    EXPECT_EQ(Recording().TakeOutcome().back(), Failed("200")[0]);
}

TEST_F(GetAccessTokenByRefrshToken, ATokenThatArrivesAfterClearIsStored) {
    Recording().duringExchange = [&](const std::wstring&) { m_service->Clear(); };
    Recording().replies = {{200, R"({"result":0,"token":"late"})", {}}};
    EXPECT_TRUE(m_service->GetAccessTokenByRefrshToken());
    EXPECT_EQ(m_service->GetCurrentAT(), L"late");
}
