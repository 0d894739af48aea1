#include "QueueProgress.h"

namespace suite {

void QueueProgress::Queued(std::uint64_t dropped) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_queued;
    m_dropped = dropped;
}

void QueueProgress::Written() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_written;
    if (m_waiting > 0) {
        m_changed.notify_all();
    }
}

bool QueueProgress::ShouldFlush() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_waiting > 0 || m_written + 1 + m_dropped >= m_queued;
}

// The queue drops its oldest lines, so when the sum has reached the target it is the earlier lines that are gone.
bool QueueProgress::Wait(std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    const std::uint64_t target = m_queued;
    ++m_waiting;
    const bool done = m_changed.wait_for(lock, timeout, [this, target] { return m_written + m_dropped >= target; });
    --m_waiting;
    return done;
}

}  // namespace suite
