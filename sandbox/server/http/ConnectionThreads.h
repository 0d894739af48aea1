#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <httplib.h>

namespace sandbox {

// The threads of one listener's connections. Every open connection occupies one, however long it stalls; a further
// thread starts whenever all of them are busy, up to a limit. Connections beyond it wait for a thread.
class ConnectionThreads final : public httplib::TaskQueue {
public:
    explicit ConnectionThreads(std::size_t most) : m_most(most) {}

    void enqueue(std::function<void()> connection) override;
    // Serves what waits and joins the threads.
    void shutdown() override;

private:
    void Serve();

    const std::size_t m_most;
    std::vector<std::thread> m_threads;  // the listening thread's alone
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_waiting;  // guarded by m_lock, as are the following
    std::size_t m_idle = 0;
    bool m_shutdown = false;
};

}  // namespace sandbox
