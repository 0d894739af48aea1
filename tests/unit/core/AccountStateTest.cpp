#include <ParamStore.h>

#include <atomic>
#include <chrono>
#include <future>
#include <new>
#include <set>
#include <thread>

#include "AccountFields.h"
#include "ServiceFixture.h"
#include "core/AccountBrandText.h"
#include "core/WindowMessages.h"

namespace {

using AccountState = ServiceTest;
using namespace std::chrono_literals;

// How an operation takes the lock. One that takes none, by design, leaves its ordering to the host.
enum class Takes { kNothing, kShared, kExclusive };

// Whether the operation, on a thread of its own, waits for this thread to let go of the lock.
bool Waits(SRWLOCK* lock, bool heldExclusively, bool isToWait, const std::function<void()>& operation) {
    heldExclusively ? AcquireSRWLockExclusive(lock) : AcquireSRWLockShared(lock);
    std::promise<void> begun;
    const auto ended = std::async(std::launch::async, [&] {
        begun.set_value();
        operation();
    });
    begun.get_future().wait();
    const bool waits = ended.wait_for(isToWait ? 20ms : 10s) == std::future_status::timeout;
    heldExclusively ? ReleaseSRWLockExclusive(lock) : ReleaseSRWLockShared(lock);
    ended.wait();
    return waits;
}

}  // namespace

// While a push runs no reader may get in: it would see a value that the store may not have yet.
TEST_F(AccountState, SettersPushToTheStoreInsideTheExclusiveHoldAndOnlyTheseDo) {
    SRWLOCK* const lock = UserAuthServiceAccess::NativeLock(*m_service);
    Recording().duringPush = [&] { EXPECT_FALSE(TryAcquireSRWLockShared(lock)) << Recording().journal.back(); };
    m_service->SetCurrentAT(L"at-\u00E9");
    m_service->SetCurrentRT(L"rt");
    m_service->SetCurrrentUserID(L"uid");
    m_service->SetCurrentUserHeadImageLocalPath(L"C:\\p");
    m_service->SetCurrentUserInfo(L"uid2", L"\u0E2A\u0E21\u0E0A\u0E32\u0E22", L"https://photo", -1);
    EXPECT_EQ(Recording().journal, Store("SetCurrentAt", "at-\xC3\xA9") + Store("SetCurrentRt", "rt") +
                                       Store("SetUserID", "uid") + Store("SetUserID", "uid2"));
    ASSERT_TRUE(TryAcquireSRWLockShared(lock)) << "free again";
    ReleaseSRWLockShared(lock);
    EXPECT_EQ(m_service->GetCurrentAT(), L"at-\u00E9");
    EXPECT_EQ(m_service->GetCurrentRT(), L"rt");
    EXPECT_EQ(m_service->GetCurrentUserName(), L"\u0E2A\u0E21\u0E0A\u0E32\u0E22");
    EXPECT_EQ(m_service->GetCurrentUserHeadImageLocalPath(), L"C:\\p");
    EXPECT_EQ(m_service->GetCurrentUserID(), L"uid2");
    EXPECT_EQ(m_service->GetCurrentUserHeadImageUrl(), L"https://photo");
    EXPECT_EQ(m_service->GetCurrentUserAccountBrandID(), -1);
    EXPECT_EQ(userauth::g_accountBrandText, "-1");
    EXPECT_EQ(m_service->GetGPWPtr(), GlobalParamWrapper::GetInstance());
}

TEST_F(AccountState, ClearEmptiesFourFieldsAndTellsNobody) {
    m_service->SetCurrentAT(L"at");
    m_service->SetCurrentRT(L"rt");
    m_service->SetCurrentUserInfo(L"uid", L"name", L"url", 7);
    m_service->SetCurrentUserHeadImageLocalPath(L"path");
    UserAuthServiceAccess::Country(*m_service) = L"\u00C9";
    Recording().journal.clear();
    m_service->Clear();
    EXPECT_TRUE(Recording().journal.empty());
    EXPECT_EQ(
        AccountFields(*m_service),
        (Fields{{"user name", L"name"}, {"portrait URL", L"url"}, {"account brand", L"7"}, {"country", L"\u00C9"}}));
    EXPECT_EQ(m_service->GetCountryCode(), "\xC3\x89");
}

TEST_F(AccountState, EachAccessorTakesTheLockInItsOwnWay) {
    UserAuthService& service = *m_service;
    const struct {
        const char* name;
        Takes takes;
        std::function<void()> operation;
    } rows[] = {
        {"GetCurrentAT", Takes::kShared, [&] { service.GetCurrentAT(); }},
        {"GetCurrentRT", Takes::kShared, [&] { service.GetCurrentRT(); }},
        {"GetCurrentUserID", Takes::kShared, [&] { service.GetCurrentUserID(); }},
        {"GetCurrentUserName", Takes::kShared, [&] { service.GetCurrentUserName(); }},
        {"GetCurrentUserHeadImageUrl", Takes::kShared, [&] { service.GetCurrentUserHeadImageUrl(); }},
        {"GetCurrentUserHeadImageLocalPath", Takes::kShared, [&] { service.GetCurrentUserHeadImageLocalPath(); }},
        {"GetCurrentCountryCode", Takes::kShared, [&] { service.GetCurrentCountryCode(); }},
        {"GetCurrentUserAccountBrandID", Takes::kShared, [&] { service.GetCurrentUserAccountBrandID(); }},
        {"BuildHeaders", Takes::kShared,
         [&] { UserAuthServiceAccess::BuildHeaders(service, HeadType::kAccessToken, L""); }},
        {"SetCurrentAT", Takes::kExclusive, [&] { service.SetCurrentAT(L"at"); }},
        {"SetCurrentRT", Takes::kExclusive, [&] { service.SetCurrentRT(L"rt"); }},
        {"SetCurrrentUserID", Takes::kExclusive, [&] { service.SetCurrrentUserID(L"uid"); }},
        {"SetCurrentUserInfo", Takes::kExclusive, [&] { service.SetCurrentUserInfo(L"u", L"n", L"l", 1); }},
        {"SetCurrentUserHeadImageLocalPath", Takes::kExclusive,
         [&] { service.SetCurrentUserHeadImageLocalPath(L"p"); }},
        {"Clear", Takes::kExclusive, [&] { service.Clear(); }},
        {"GetCountryCode", Takes::kNothing, [&] { service.GetCountryCode(); }},
        {"GetLanguageType", Takes::kNothing, [&] { service.GetLanguageType(); }},
        {"GetValidModule", Takes::kNothing, [&] { service.GetValidModule(); }},
        {"SetRealUserKey", Takes::kNothing, [&] { service.SetRealUserKey({1}); }},
        {"GetRealUserKey", Takes::kNothing, [&] { service.GetRealUserKey(); }},
        {"GetCurrentPriviledge", Takes::kNothing, [&] { service.GetCurrentPriviledge(); }},
        {"GetClientLogReportStatus", Takes::kNothing, [&] { service.GetClientLogReportStatus(); }},
        {"IsActiveAccount", Takes::kNothing, [&] { service.IsActiveAccount(); }},
        {"IsAvailableCountry", Takes::kNothing, [&] { service.IsAvailableCountry(); }},
        {"GetGPWPtr", Takes::kNothing, [&] { service.GetGPWPtr(); }},
        {"GetTraceID", Takes::kNothing, [&] { service.GetTraceID(BaseCmd::kRequestAccessToken); }},
        {"SetAtExpireCallback", Takes::kNothing, [&] { service.SetAtExpireCallback(nullptr); }},
    };
    SRWLOCK* const lock = UserAuthServiceAccess::NativeLock(service);
    for (const auto& row : rows) {
        const bool toAnExclusiveHolder = row.takes != Takes::kNothing;
        const bool toASharedHolder = row.takes == Takes::kExclusive;
        EXPECT_EQ(Waits(lock, true, toAnExclusiveHolder, row.operation), toAnExclusiveHolder) << row.name;
        EXPECT_EQ(Waits(lock, false, toASharedHolder, row.operation), toASharedHolder) << row.name;
    }
}

// The store did not take the value, so the account state does not either.
TEST_F(AccountState, APushThatFailsChangesNothing) {
    m_service->SetCurrentAT(L"at");
    m_service->SetCurrentRT(L"rt");
    m_service->SetCurrentUserInfo(L"uid", L"name", L"url", 7);
    const Fields before = AccountFields(*m_service);
    Recording().duringPush = [] { throw std::bad_alloc(); };
    EXPECT_THROW(m_service->SetCurrentAT(L"other"), std::bad_alloc);
    EXPECT_THROW(m_service->SetCurrentRT(L"other"), std::bad_alloc);
    EXPECT_THROW(m_service->SetCurrrentUserID(L"other"), std::bad_alloc);
    EXPECT_THROW(m_service->SetCurrentUserInfo(L"other", L"other", L"other", 8), std::bad_alloc);
    EXPECT_EQ(AccountFields(*m_service), before);
    EXPECT_EQ(userauth::g_accountBrandText, "7");
}

TEST_F(AccountState, ReadersSeeWholeValuesWhileWritersWrite) {
    const std::wstring values[] = {std::wstring(1000, L'a'), std::wstring(2000, L'b')};
    m_service->SetCurrentAT(values[0]);
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
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
    std::vector<std::future<UserAuthService*>> callers(16);
    for (auto& caller : callers) {
        caller = std::async(std::launch::async, [&waiting] {
            --waiting;
            while (waiting > 0) {
            }
            return UserAuthService::GetInstance();
        });
    }
    std::set<UserAuthService*> seen;
    for (auto& caller : callers) {
        seen.insert(caller.get());
    }
    EXPECT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen.count(nullptr), 0U);
    EXPECT_EQ(Recording().Lines("log").size(), 1U) << "one load line for each construction";
    Singleton();
}

TEST(SuiteWindowMessages, AreThoseOfTheSuite) {
    const userauth::SuiteWindowMessages& messages = userauth::g_suiteWindowMessages;
    EXPECT_EQ(messages.showWindow, RegisterWindowMessageW(L"WM_APP_SHOWWINDOW"));
    EXPECT_EQ(messages.isClosing, RegisterWindowMessageW(L"WM_APP_ISCLOSING"));
    EXPECT_EQ(messages.refreshPreferences, RegisterWindowMessageW(L"WM_APP_REFRESHPREFS"));
    EXPECT_EQ(messages.restore, RegisterWindowMessageW(L"WM_APP_RESTORE"));
    EXPECT_EQ(messages.accessTokenLost, RegisterWindowMessageW(L"WM_APP_ATLOST"));
}

TEST_F(AccountState, StartsEmpty) {
    EXPECT_EQ(AccountFields(*m_service), Fields{});
    EXPECT_EQ(FnUserAuthService(), 0);
    EXPECT_EQ(g_nUserAuthService, 0);
    const std::vector<std::uint8_t> key = {1, 2, 3};
    m_service->SetRealUserKey(key);
    EXPECT_EQ(m_service->GetRealUserKey(), key);
}
