#include "CurlHandlePool.h"

#include <array>
#include <chrono>
#include <mutex>
#include <vector>

#include "ProcessState.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMaxIdleHandles = 16;
// libcurl takes up no connection that was idle for longer than 118 s.
constexpr std::chrono::seconds kMaxIdleTime(120);

void LockShared(CURL* handle, curl_lock_data data, curl_lock_access access, void* locks);
void UnlockShared(CURL* handle, curl_lock_data data, void* locks);

// Lives until the process ends and is never destroyed; the DLL pins itself for the same reason. At process exit the
// other threads have been killed at an arbitrary point, perhaps while they held one of these locks or used a
// connection: a destructor that ran then could wait for ever or free what is half changed.
class SharedState {
public:
    SharedState() {
        suite::PinThisModule();
        m_idle.reserve(kMaxIdleHandles);
        m_started = curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK;
        m_share = m_started ? curl_share_init() : nullptr;
        if (m_share != nullptr) {
            curl_share_setopt(m_share, CURLSHOPT_LOCKFUNC, &LockShared);
            curl_share_setopt(m_share, CURLSHOPT_UNLOCKFUNC, &UnlockShared);
            curl_share_setopt(m_share, CURLSHOPT_USERDATA, &m_shareLocks);
            // Not connections: libcurl does not support their sharing between threads.
            curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
            curl_share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
        }
    }

    CURL* Take() {
        if (!m_started) {
            return nullptr;
        }
        DropStale();
        {
            // Last in, first out: the handle used last is the likeliest to hold a live connection to the host.
            const std::lock_guard<std::mutex> hold(m_idleLock);
            if (!m_idle.empty()) {
                CURL* const handle = m_idle.back().handle;
                m_idle.pop_back();
                return handle;
            }
        }
        CURL* const handle = curl_easy_init();
        if (handle != nullptr && m_share != nullptr) {
            curl_easy_setopt(handle, CURLOPT_SHARE, m_share);
        }
        return handle;
    }

    void Return(CURL* handle) {
        curl_easy_reset(handle);  // keeps connections and the share
        DropStale();
        {
            const std::lock_guard<std::mutex> hold(m_idleLock);
            if (m_idle.size() < kMaxIdleHandles) {
                m_idle.push_back({handle, Clock::now()});
                return;
            }
        }
        curl_easy_cleanup(handle);
    }

    using Locks = std::array<std::mutex, CURL_LOCK_DATA_LAST>;

private:
    struct Idle {
        CURL* handle;
        Clock::time_point since;
    };

    // A handle that has been idle for too long, taken out; null: there is none. The oldest lies in front.
    CURL* TakeStale() {
        const std::lock_guard<std::mutex> hold(m_idleLock);
        if (m_idle.empty() || Clock::now() - m_idle.front().since < kMaxIdleTime) {
            return nullptr;
        }
        CURL* const handle = m_idle.front().handle;
        m_idle.erase(m_idle.begin());
        return handle;
    }

    // Closes sockets whose peers have long gone.
    void DropStale() {
        while (CURL* const handle = TakeStale()) {
            curl_easy_cleanup(handle);
        }
    }

    bool m_started = false;
    CURLSH* m_share = nullptr;
    Locks m_shareLocks;
    std::mutex m_idleLock;
    std::vector<Idle> m_idle;
};

void LockShared(CURL*, curl_lock_data data, curl_lock_access, void* locks) {
    (*static_cast<SharedState::Locks*>(locks))[data].lock();
}

void UnlockShared(CURL*, curl_lock_data data, void* locks) {
    (*static_cast<SharedState::Locks*>(locks))[data].unlock();
}

SharedState& Shared() {
    static auto* const state = new SharedState;
    return *state;
}

}  // namespace

void ReturnToPool::operator()(CURL* handle) const noexcept {
    Shared().Return(handle);
}

CurlLease LeaseCurlHandle() {
    return CurlLease(Shared().Take());
}
