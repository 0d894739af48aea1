#include "CurlHandlePool.h"

#if !defined(_WIN32)
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <mutex>

#include "LibcurlStart.h"
#include "ProcessState.h"

namespace suite {

namespace {

using Clock = std::chrono::steady_clock;

// Never more for a host than requests to it that ran at once: as many as a busy client's threads keep their
// connections.
constexpr std::size_t kMaxIdleHandles = 64;
// libcurl takes up no connection that was idle for longer than 118 s.
constexpr std::chrono::seconds kMaxIdleTime(120);

// Not every system tells the reader: Wine reads a reset as an orderly end. Sending nothing asks again.
bool WasReset([[maybe_unused]] curl_socket_t socket) {
#if defined(_WIN32)
    return send(socket, "", 0, 0) < 0;
#else
    return false;
#endif
}

int CloseNative(curl_socket_t socket) {
#if defined(_WIN32)
    return closesocket(socket);
#else
    return close(socket);
#endif
}

// Of an orderly end there are none: libcurl sees that itself.
bool HasBytesToRead(curl_socket_t socket) {
#if defined(_WIN32)
    u_long count = 0;
    return ioctlsocket(socket, FIONREAD, &count) == 0 && count > 0;
#else
    int count = 0;
    return ioctl(socket, FIONREAD, &count) == 0 && count > 0;
#endif
}

void LockShared(CURL* handle, curl_lock_data data, curl_lock_access access, void* locks);
void UnlockShared(CURL* handle, curl_lock_data data, void* locks);

curl_socket_t OpenSocket(void* handle, curlsocktype, curl_sockaddr* address) {
    const curl_socket_t opened = socket(address->family, address->socktype, address->protocol);
    if (opened == CURL_SOCKET_BAD) {
        return opened;
    }
    try {
        static_cast<CurlHandle*>(handle)->sockets.push_back(opened);
        return opened;
    } catch (const std::bad_alloc&) {
        CloseNative(opened);
        return CURL_SOCKET_BAD;
    }
}

int CloseSocket(void* data, curl_socket_t closed) {
    auto& handle = *static_cast<CurlHandle*>(data);
    handle.lastCloseWasReset = WasReset(closed);
    auto& open = handle.sockets;
    open.erase(std::remove(open.begin(), open.end(), closed), open.end());
    return CloseNative(closed);
}

// libcurl takes up such a connection, and the bytes for the reply to the next request; not under Wine, where it takes
// the connection for dead.
bool HasUnaskedBytes(const CurlHandle& handle) {
    return std::any_of(handle.sockets.begin(), handle.sockets.end(), HasBytesToRead);
}

// Closing a connection still looks for its socket in the list.
void Destroy(CurlHandle* handle) {
    curl_easy_cleanup(handle->easy);
    delete handle;
}

// Lives until the process ends and is never destroyed; the DLL pins itself for the same reason. At process exit the
// other threads have been killed at an arbitrary point, perhaps while they held one of these locks or used a
// connection: a destructor that ran then could wait for ever or free what is half changed.
class SharedState {
public:
    SharedState() {
        suite::PinThisModule();
        m_idle.reserve(kMaxIdleHandles);
        m_started = suite::StartLibcurl();
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

    CurlHandle* Take(const std::string& origin) {
        if (!m_started) {
            return nullptr;
        }
        DropStale();
        while (CurlHandle* const handle = TakeIdle(origin)) {
            if (!HasUnaskedBytes(*handle)) {
                return handle;
            }
            Destroy(handle);
        }
        auto handle = std::make_unique<CurlHandle>();
        handle->origin = origin;
        handle->easy = curl_easy_init();
        if (handle->easy == nullptr) {
            return nullptr;
        }
        if (m_share != nullptr) {
            curl_easy_setopt(handle->easy, CURLOPT_SHARE, m_share);
        }
        return handle.release();
    }

    void Return(CurlHandle* handle) {
        curl_easy_reset(handle->easy);  // keeps connections and the share
        DropStale();
        CurlHandle* oldest = nullptr;
        {
            const std::lock_guard<std::mutex> hold(m_idleLock);
            if (m_idle.size() == kMaxIdleHandles) {
                oldest = m_idle.front().handle;
                m_idle.erase(m_idle.begin());
            }
            m_idle.push_back({handle, Clock::now()});
        }
        if (oldest != nullptr) {
            Destroy(oldest);
        }
    }

    using Locks = std::array<std::mutex, CURL_LOCK_DATA_LAST>;

private:
    struct Idle {
        CurlHandle* handle;
        Clock::time_point since;
    };

    // Last in, first out: the handle used last is the likeliest to hold a live connection to the host. Null: none.
    CurlHandle* TakeIdle(const std::string& origin) {
        const std::lock_guard<std::mutex> hold(m_idleLock);
        const auto found = std::find_if(m_idle.rbegin(), m_idle.rend(),
                                        [&origin](const Idle& idle) { return idle.handle->origin == origin; });
        if (found == m_idle.rend()) {
            return nullptr;
        }
        CurlHandle* const handle = found->handle;
        m_idle.erase(std::next(found).base());
        return handle;
    }

    // A handle that has been idle for too long, taken out; null: there is none. The oldest lies in front.
    CurlHandle* TakeStale() {
        const std::lock_guard<std::mutex> hold(m_idleLock);
        if (m_idle.empty() || Clock::now() - m_idle.front().since < kMaxIdleTime) {
            return nullptr;
        }
        CurlHandle* const handle = m_idle.front().handle;
        m_idle.erase(m_idle.begin());
        return handle;
    }

    // Closes sockets whose peers have long gone.
    void DropStale() {
        while (CurlHandle* const handle = TakeStale()) {
            Destroy(handle);
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

void ReturnToPool::operator()(CurlHandle* handle) const noexcept {
    Shared().Return(handle);
}

CurlLease LeaseCurlHandle(const std::string& origin) {
    return CurlLease(Shared().Take(origin));
}

void SetSocketOptions(CurlHandle& handle) {
    SetCurlOption(handle.easy, CURLOPT_OPENSOCKETFUNCTION, &OpenSocket);
    SetCurlOption(handle.easy, CURLOPT_OPENSOCKETDATA, &handle);
    SetCurlOption(handle.easy, CURLOPT_CLOSESOCKETFUNCTION, &CloseSocket);
    SetCurlOption(handle.easy, CURLOPT_CLOSESOCKETDATA, &handle);
}

}  // namespace suite
