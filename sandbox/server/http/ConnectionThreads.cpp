#include "http/ConnectionThreads.h"

#include <system_error>
#include <utility>

namespace sandbox {

void ConnectionThreads::enqueue(std::function<void()> connection) {
    bool allBusy = false;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_waiting.push_back(std::move(connection));
        allBusy = m_waiting.size() > m_idle;
    }
    m_changed.notify_one();
    if (allBusy && m_threads.size() < m_most) {
        try {
            m_threads.emplace_back([this] { Serve(); });
        } catch (const std::system_error&) {
            // The system has no more threads: the connection waits for one of ours, if there are any.
            if (m_threads.empty()) {
                throw;
            }
        }
    }
}

void ConnectionThreads::shutdown() {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_shutdown = true;
    }
    m_changed.notify_all();
    for (auto& thread : m_threads) {
        thread.join();
    }
}

void ConnectionThreads::Serve() {
    std::unique_lock<std::mutex> lock(m_lock);
    for (;;) {
        ++m_idle;
        m_changed.wait(lock, [this] { return m_shutdown || !m_waiting.empty(); });
        --m_idle;
        if (m_waiting.empty()) {
            return;
        }
        const auto connection = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        connection();
        lock.lock();
    }
}

}  // namespace sandbox
