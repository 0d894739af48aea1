#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace suite {

// Counts lines into and out of the queue, so that a caller can wait until what it queued has been written. Any thread.
class QueueProgress {
public:
    // One more line was queued; dropped: all that the full queue has dropped so far.
    void Queued(std::uint64_t dropped);
    // One more line is in its sink, or failed there.
    void Written();

    // Asked by the writer with one line in hand: true when it has caught up or somebody waits, which is when buffered
    // output has to go out.
    bool ShouldFlush();

    // Waits until every line queued before the call was written or dropped. False when the time ran out.
    bool Wait(std::chrono::milliseconds timeout);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::uint64_t m_queued = 0;
    std::uint64_t m_dropped = 0;
    std::uint64_t m_written = 0;
    int m_waiting = 0;
};

}  // namespace suite
