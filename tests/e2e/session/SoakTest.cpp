#include <ParamStore.h>
#include <UserSyncKeyService.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <mutex>
#include <random>
#include <shared_mutex>
#include <thread>

#include "ProcessResources.h"
#include "SandboxSession.h"

namespace {

constexpr int kThreads = 16;
constexpr wchar_t kUserId[] = L"260086000100000001";
const char* const kEndpoints[] = {"/pcclient/refreshtoken",
                                  "/pcclient/getAccessTokenByCode",
                                  "/gateway",
                                  "/KeCloudUserInformationService/v1/users",
                                  "/KeCloudUserInformationService/v1/keys",
                                  "/KeCloudUserFoundationService/PC/sysConfInit",
                                  "/KeCloudUserFoundationService/PC/getLastOperationRecord",
                                  "/contacts/v1/export"};
const std::vector<std::wstring> kModules = {L"Contacts",    L"Drive",   L"FindDevice", L"Gallery",
                                            L"ManageSpace", L"Notepad", L"Recorder"};

// One session that everything happens to at once. What the service leaves to the host to order is ordered here: a
// country that a sign-in writes, the lists and flags without a lock, the user record, the portrait's file.
class Soak : public SandboxSession {
protected:
    Soak() { SignInWhole(); }

    void SignInAgain() {
        const std::unique_lock<std::shared_mutex> order(m_country);
        const std::string code = SignIn();
        m_service->RequestAT("", code.c_str());
    }

    void Configure() {
        const std::shared_lock<std::shared_mutex> country(m_country);
        const std::lock_guard<std::mutex> order(m_configuration);
        m_service->InitSysConf();
        m_service->ActiveUser();
        const auto modules = m_service->GetValidModule();
        EXPECT_TRUE(modules.empty() || modules == kModules) << modules.size() << " modules";
    }

    void Report() {
        const std::lock_guard<std::mutex> order(m_reports);
        m_service->UpdateRegistInfo();
        m_service->RequestClientLogReport();
        m_service->ReportLoginTime("soak");
    }

    void Keys() {
        const std::lock_guard<std::mutex> order(m_record);
        UserSyncKeyService keys;
        m_keyRuns += m_service->GetCurrentAT().empty() ? 0 : 1;
        keys.InitUserSyncKey();
        const bool longKey = std::wcslen(GlobalParamWrapper::GetInstance()->GetUserInfo().photoKeyUuid3) == 32;
        EXPECT_TRUE(!keys.IsCloudPhotoKeyInited() || longKey);
        keys.ClearUserSyncKey();
    }

    void Contacts() {
        const std::filesystem::path file = m_folder / ("contacts" + std::to_string(GetCurrentThreadId()));
        m_service->ExportContracts(m_sandbox.Url("/contacts/v1/export"), file.wstring(), m_cookies);
    }

    void Profile() {
        const std::lock_guard<std::mutex> order(m_portrait);
        m_service->RequestUserInfo();
    }

    void Read() {
        const std::wstring id = m_service->GetCurrentUserID();
        EXPECT_TRUE(id.empty() || id == kUserId) << Narrow(id);
        const std::wstring token = m_service->GetCurrentAT();
        EXPECT_TRUE(token.empty() || token.size() == 78) << token.size();
    }

    void Spoil(std::mt19937& random) {
        static const char* const kFaults[] = {
            R"({"status":500})",         R"({"garbage":true})",    R"({"cutAfter":7})", R"({"delayMs":50})",
            R"({"contentLength":9999})", R"({"wrongTypes":true})", R"({"body":"[]"})"};
        m_sandbox.Fault(kEndpoints[random() % std::size(kEndpoints)], kFaults[random() % std::size(kFaults)]);
    }

    // A fault that nobody met yet is replaced by a harmless one.
    void EndFaults() {
        for (const char* endpoint : kEndpoints) {
            m_sandbox.Fault(endpoint, R"({"delayMs":1})");
        }
    }

    void One(std::mt19937& random) {
        std::vector<DeviceTag> devices;
        const std::function<void()> operations[] = {
            [&] { Configure(); },
            [&] { Report(); },
            [&] { Keys(); },
            [&] { Contacts(); },
            [&] { m_service->GetLoginDevicesHistory(devices); },
            [&] { Profile(); },
            [&] { Spoil(random); },
            [&] { random() % 4 == 0 ? SignInAgain() : Read(); },
            [&] { random() % 4 == 0 ? m_service->Clear() : Read(); },
            [&] { m_service->GetAccessTokenByRefrshToken(); },
            [&] { m_service->RequestApplicationAT(); },
            [&] { m_service->RequestUserIdFromSyncServer(); },
            [&] { m_service->SetCurrrentUserID(kUserId); },
            [&] { m_service->RequestUserID(); },
        };
        operations[random() % std::size(operations)]();
    }

    void Run(int operations) {
        std::atomic<int> left = operations;
        std::vector<std::thread> threads;
        for (unsigned seed = 0; seed < kThreads; ++seed) {
            threads.emplace_back([this, &left, seed] {
                std::mt19937 random(seed);
                while (left-- > 0) {
                    One(random);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    // When the last portrait's thread has ended.
    static Resources Settled(DWORD threads) {
        Resources now = Resources::Now();
        for (int tries = 0; tries < 300 && now.threads > threads; ++tries) {
            Sleep(50);
            now = Resources::Now();
        }
        return now;
    }

    std::map<std::wstring, std::wstring> m_cookies;
    std::size_t m_keyRuns = 0;  // with a token to ask with; under m_record while the threads run

private:
    std::shared_mutex m_country;
    std::mutex m_configuration;
    std::mutex m_reports;
    std::mutex m_record;
    std::mutex m_portrait;
};

}  // namespace

// The short form; "./dev soak" sets the number of operations.
TEST_F(Soak, SixteenThreadsShareOneSession) {
    const char* const wanted = std::getenv("USERAUTH_SOAK_OPERATIONS");
    const int operations = wanted == nullptr ? 400 : static_cast<int>(std::strtol(wanted, nullptr, 10));
    ASSERT_GT(operations, 0);
    m_cookies = m_sandbox.PortalCookies();
    const DWORD threadsAtRest = Resources::Now().threads;
    Run(operations / 2);  // the warm-up fills pools and caches
    const Resources warm = Settled(threadsAtRest);
    const std::size_t keyRuns = m_keyRuns;
    Run(operations);
    const Resources end = Settled(threadsAtRest);
    std::cout << operations << " operations; after the warm-up " << warm << "; at the end " << end << std::endl;
    EXPECT_LE(end.threads, warm.threads);
    // Wine 8 never closes the registry key that it opens for each acquisition of a named key container.
    EXPECT_LE(end.handles, warm.handles + (m_keyRuns - keyRuns) + kThreads) << "beyond one a connection of the pool";
    EXPECT_LE(end.memory, warm.memory + 8 * 1024 * 1024);
    EXPECT_GT(warm.handles, 0U);

    EndFaults();
    SignInWhole();
    EXPECT_TRUE(m_service->InitSysConf() && m_service->IsAvailableCountry()) << LogText();
    EXPECT_EQ(m_service->GetValidModule(), kModules);
    EXPECT_TRUE(UserSyncKeyService().InitUserSyncKey());
    EXPECT_EQ(m_service->GetCurrentUserID(), kUserId);
    UserSyncKeyService().ClearUserSyncKey();
}
