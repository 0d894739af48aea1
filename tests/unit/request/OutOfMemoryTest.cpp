#include <cstdlib>
#include <new>
#include <utility>

#include "ServiceFixture.h"

namespace {

// This thread's allocations until the one that fails; negative: none does. What the C++ runtime (texts) and the JSON
// library allocate is not counted on Windows, where each calls its own operator new.
thread_local int g_untilFailure = -1;

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = g_untilFailure-- == 0 ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

class OutOfMemory : public ServiceTest {
protected:
    OutOfMemory() {
        m_service->SetCurrentAT(L"at");
        m_service->SetCurrentRT(L"rt");
    }

    // Runs an operation of which one allocation fails. False when it makes fewer.
    template <typename Operation>
    bool Fails(int allocation, Operation&& operation) {
        Recording().journal.clear();
        Recording().requestHeaders.clear();
        g_untilFailure = allocation;
        operation();
        const bool failed = std::exchange(g_untilFailure, -1) < 0;
        Recording().requestHeaders.erase(L"x-zv-trace-id");
        return failed;
    }
};

}  // namespace

TEST_F(OutOfMemory, ARequestIsWholeOrNotSent) {
    std::vector<DeviceTag> devices;
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"RequestAT", [&] { m_service->RequestAT("", "code"); }},
        {"RequestApplicationAT", [&] { m_service->RequestApplicationAT(); }},
        {"GetAccessTokenByRefrshToken", [&] { m_service->GetAccessTokenByRefrshToken(); }},
        {"UpdateRegistInfo", [&] { m_service->UpdateRegistInfo(); }},
        {"GetLoginDevicesHistory", [&] { m_service->GetLoginDevicesHistory(devices); }},
        {"InitSysConf", [&] { m_service->InitSysConf(); }},
    };
    for (const auto& [name, operation] : operations) {
        Fails(-1, operation);
        const Headers whole = Recording().requestHeaders;
        int allocation = 0;
        int notSent = 0;
        for (; Fails(allocation, operation); ++allocation) {
            const bool sent = !Recording().Lines("http Request").empty();
            EXPECT_TRUE(!sent || Recording().requestHeaders == whole) << name << ", allocation " << allocation;
            notSent += sent ? 0 : 1;
        }
        EXPECT_GT(notSent, 0) << name << ": it takes memory before it sends";
    }
}

TEST_F(OutOfMemory, TheStoredKeyIsNotLost) {
    const std::vector<std::uint8_t> keys[] = {{1, 2, 3}, std::vector<std::uint8_t>(32, 7)};
    m_service->SetRealUserKey(keys[0]);
    std::vector<std::uint8_t> next = keys[1];
    EXPECT_FALSE(Fails(0, [&] { m_service->SetRealUserKey(std::move(next)); })) << "it takes no memory";
    EXPECT_EQ(m_service->GetRealUserKey(), keys[1]);
}

// A reply for whose reading there is no memory must not look like one without members, which would be stored.
TEST_F(OutOfMemory, AReplyThatCannotBeReadIsAFailure) {
    Recording().repliesByUrl
        [L"https://gateway.example.com?access_token=at&nsp_fmt=JSON&nsp_svc="
         L"zorvan.oauth2.user.getTokenInfo&open_id=OPENID"] = {200, R"({"uid":"u"})", {}};
    bool done = false;
    for (int allocation = 0; Fails(allocation, [&] { done = m_service->RequestUserID(); }); ++allocation) {
        EXPECT_TRUE(!done || m_service->GetCurrentUserID() == L"u") << "allocation " << allocation;
    }
    EXPECT_TRUE(done);
}
