#include <HttpLib.h>
#include <ParamStore.h>

#include <thread>

#include "SandboxSession.h"

namespace {

const char kExchange[] = "/pcclient/getAccessTokenByCode";

std::string Utf8(const std::wstring& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

TEST_F(SandboxSession, ALoginFillsServiceAndStoreAndNoSecretReachesTheLog) {
    const std::string code = SignIn();
    ASSERT_TRUE(m_service->RequestAT(code, code.c_str())) << LogText();
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    EXPECT_FALSE(m_service->GetCurrentAT().empty());
    EXPECT_FALSE(m_service->GetCurrentRT().empty());
    EXPECT_EQ(store->GetCurrentAt(), m_service->GetCurrentAT());
    EXPECT_EQ(store->GetCurrentRt(), m_service->GetCurrentRT());
    EXPECT_EQ(m_service->GetCountryCode(), "CN");
    EXPECT_TRUE(store->GetStartSend());
    EXPECT_TRUE(m_service->IsZmsSignIn());
    std::wstring nobody = L"nobody";
    EXPECT_TRUE(m_service->IsZmsAccountChanged(nobody));

    const std::string log = LogText();
    EXPECT_NE(log.find("Get AT successed!"), std::string::npos);
    EXPECT_NE(log.find("\"event\":250"), std::string::npos);
    EXPECT_EQ(log.find(Utf8(m_service->GetCurrentAT())), std::string::npos);
    EXPECT_EQ(log.find(code), std::string::npos);
    EXPECT_EQ(log.find(Utf8(m_service->GetCurrentRT())), std::string::npos);

    // A code is good for one exchange.
    EXPECT_FALSE(m_service->RequestAT(code, code.c_str()));
}

TEST_F(SandboxSession, FaultsOfThePortalFailTheExchange) {
    const struct {
        const char* name;
        const char* fault;
        bool keepsTheToken;  // no 200 reached the client
    } rows[] = {
        {"status", R"({"status":503})", true},
        {"cut", R"({"cutAfter":40})", true},
        {"too long a length", R"({"contentLength":4000})", true},
        {"garbage", R"({"garbage":true})", false},
        {"wrong types", R"({"wrongTypes":true})", false},
        {"array", R"({"body":"[]"})", false},
        {"empty", R"({"body":""})", false},
        {"one byte too large", R"({"oversize":40960})", false},
        {"10 MiB", R"({"oversize":10485760})", false},
    };
    for (const auto& row : rows) {
        const std::string code = SignIn();
        m_service->SetCurrentAT(L"before");
        m_sandbox.Fault(kExchange, row.fault);
        EXPECT_FALSE(m_service->RequestAT("", code.c_str())) << row.name;
        EXPECT_EQ(m_service->GetCurrentAT(), row.keepsTheToken ? L"before" : L"") << row.name;
    }
    const std::string code = SignIn();
    m_sandbox.Fault(kExchange, R"({"oversize":40959})");
    EXPECT_TRUE(m_service->RequestAT("", code.c_str())) << "the largest reply that fits";
}

TEST_F(SandboxSession, RequestsInARowShareOneConnection) {
    std::map<std::string, std::string> headers;
    const std::wstring url(m_sandbox.m_http.begin(), m_sandbox.m_http.end());
    const int before = m_sandbox.Control("/sandbox/statistics")["connections"]["http"].asInt();
    for (int round = 0; round < 5; ++round) {
        EXPECT_NE(m_service->GetRtqRemoteInfo(url + L"/routing/v1/remote", headers), "");
        EXPECT_FALSE(headers.empty());
    }
    EXPECT_EQ(m_sandbox.Control("/sandbox/statistics")["connections"]["http"].asInt(), before);
    EXPECT_EQ(m_service->GetRtqRemoteInfo(url + L"/nowhere", headers), "");
}

TEST_F(SandboxSession, GettersAnswerDuringAStalledExchange) {
    const std::string code = SignIn();
    m_service->SetCurrentAT(L"before");
    m_sandbox.Fault(kExchange, R"({"delayMs":3000})");
    std::thread exchange([&] { EXPECT_TRUE(m_service->RequestAT("", code.c_str())); });
    m_sandbox.AwaitRequest(kExchange);
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(m_service->GetCurrentAT(), L"before");
    m_service->Clear();
    EXPECT_LT(GetTickCount64() - start, 1500U);
    exchange.join();
    EXPECT_NE(m_service->GetCurrentAT(), L"");
}
