#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace spdlog::sinks {
class sink;
}

namespace suite {

// A sink with a queue of its own and the thread that empties it, so that a sink that stands still holds up neither
// the caller nor another sink. The queue is bounded in lines and bytes; its oldest lines give way. How many were
// lost, in the queue or because the sink failed, is written in their place.
class SinkThread {
public:
    using Clock = std::chrono::steady_clock;

    // The thread waits for Start. lossText: what is written for a number of lost lines. Both go when the thread ends.
    SinkThread(std::shared_ptr<spdlog::sinks::sink> sink, std::function<std::string(std::uint64_t)> lossText);
    ~SinkThread();  // closes without waiting; what was never started writes nothing
    SinkThread(const SinkThread&) = delete;
    SinkThread& operator=(const SinkThread&) = delete;

    // UTF-8. place: the part of the line that the sink's formatter does not mask; urgent: written through at once. Any
    // thread. For want of memory the line is lost, and counted.
    void Post(std::string_view place, std::string_view text, bool urgent) noexcept;

    // From now on the thread writes.
    void Start() noexcept;

    // Waits until every line posted before the call was written or lost. False when the time ran out.
    bool Wait(Clock::time_point deadline);

    // From now on the thread ends as soon as its queue is empty.
    void BeginToClose();
    // Waits for that, until the deadline or until the sink has not taken a line for the given time. Then the thread is
    // given up: it ends when the sink's call comes back, so the module has to stay loaded. Once.
    void Close(Clock::time_point deadline, std::chrono::milliseconds longestStandstill);

private:
    struct State;

    std::shared_ptr<State> m_state;  // shared with the thread, which may be left behind
    std::thread m_thread;
};

}  // namespace suite
