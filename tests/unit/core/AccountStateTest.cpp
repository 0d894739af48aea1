#include <ParamStore.h>

#include <atomic>
#include <set>
#include <thread>

#include "ServiceFixture.h"
#include "core/AccountBrandText.h"

TEST_F(ServiceTest, SettersPushToTheStoreAndOnlyTheseDo) {
    m_service->SetCurrentAT(L"at-\u00E9");
    m_service->SetCurrentRT(L"rt");
    m_service->SetCurrrentUserID(L"uid");
    m_service->SetCurrentUserHeadImageLocalPath(L"C:\\p");
    m_service->SetCurrentUserInfo(L"uid2", L"\u0E2A\u0E21\u0E0A\u0E32\u0E22", L"https://photo", -1);
    EXPECT_EQ(Recording().journal, (std::vector<std::string>{"store SetCurrentAt at-\xC3\xA9", "store SetCurrentRt rt",
                                                             "store SetUserID uid", "store SetUserID uid2"}));
    EXPECT_EQ(m_service->GetCurrentAT(), L"at-\u00E9");
    EXPECT_EQ(m_service->GetCurrentUserID(), L"uid2");
    EXPECT_EQ(m_service->GetCurrentUserHeadImageUrl(), L"https://photo");
    EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), -1);
    EXPECT_EQ(userauth::g_accountBrandText, "-1");
    EXPECT_EQ(m_service->GetGPWPtr(), GlobalParamWrapper::GetInstance());
}

TEST_F(ServiceTest, ClearEmptiesFourFieldsAndTellsNobody) {
    m_service->SetCurrentAT(L"at");
    m_service->SetCurrentRT(L"rt");
    m_service->SetCurrentUserInfo(L"uid", L"name", L"url", 7);
    m_service->SetCurrentUserHeadImageLocalPath(L"path");
    UserAuthServiceAccess::SetCountry(*m_service, L"\u00C9");
    Recording().journal.clear();
    m_service->Clear();
    EXPECT_TRUE(Recording().journal.empty());
    EXPECT_EQ(m_service->GetCurrentAT() + m_service->GetCurrentRT() + m_service->GetCurrentUserID() +
                  m_service->GetCurrentUserHeadImageLocalPath(),
              L"");
    EXPECT_EQ(m_service->GetCurrentUserName(), L"name");
    EXPECT_EQ(m_service->GetCurrentUserHeadImageUrl(), L"url");
    EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), 7);
    EXPECT_EQ(m_service->GetCountryCode(), "\xC3\x89");
}

// A reader that gets through while a push is running would see a value that the store may not have yet.
TEST_F(ServiceTest, ThePushHappensInsideTheExclusiveHold) {
    std::atomic<bool> readerDone{false};
    std::thread reader;
    Recording().duringPush = [&] {
        reader = std::thread([&] {
            m_service->GetCurrentAT();
            readerDone = true;
        });
        Sleep(100);
        EXPECT_FALSE(readerDone);
    };
    m_service->SetCurrentAT(L"new");
    reader.join();
    EXPECT_TRUE(readerDone);
}

TEST_F(ServiceTest, ReadersSeeWholeValuesWhileWritersWrite) {
    const std::wstring values[] = {std::wstring(1000, L'a'), std::wstring(2000, L'b')};
    m_service->SetCurrentAT(values[0]);
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&] {
            while (!stop) {
                const std::wstring seen = m_service->GetCurrentAT();
                torn += seen != values[0] && seen != values[1] && !seen.empty();
            }
        });
    }
    for (int round = 0; round < 300; ++round) {
        m_service->SetCurrentAT(values[round % 2]);
        if (round % 50 == 0) {
            m_service->Clear();
        }
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
}

TEST(Singleton, FirstCallersFromManyThreadsGetOneObjectConstructedOnce) {
    Recording() = SuiteRecording();
    const InstalledSdk sdk("scripted-sdk.dll");
    std::atomic<int> waiting{16};
    std::vector<UserAuthService*> seen(16);
    std::vector<std::thread> threads;
    for (UserAuthService*& slot : seen) {
        threads.emplace_back([&waiting, &slot] {
            --waiting;
            while (waiting > 0) {
            }
            slot = UserAuthService::GetInstance();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<UserAuthService*>(seen.begin(), seen.end()).size(), 1U);
    EXPECT_NE(seen[0], nullptr);
    EXPECT_EQ(Recording().Lines("log").size(), 1U) << "one load line for each construction";
    // Keeps the SDK's file from being in use when the next test wants its place.
    UserAuthServiceAccess::Unload(*seen[0]);
}

TEST_F(ServiceTest, StartsEmpty) {
    EXPECT_FALSE(m_service->IsActiveAccount() || m_service->IsAvailableCountry() || m_service->GetCurrentPriviledge() ||
                 m_service->GetClientLogReportStatus());
    EXPECT_TRUE(m_service->GetValidModule().empty());
    EXPECT_EQ(m_service->GetLanguageType() + m_service->GetCountryCode(), "");
    EXPECT_EQ(FnUserAuthService(), 0);
    EXPECT_EQ(g_nUserAuthService, 0);
    const std::vector<std::uint8_t> key = {1, 2, 3};
    m_service->SetRealUserKey(key);
    EXPECT_EQ(m_service->GetRealUserKey(), key);
}
