#include "SinkThread.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/sink.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace suite {
namespace {

// At a thousand lines a second a disk may stand still for four seconds before lines are lost.
constexpr std::size_t kMaxLines = 4096;
constexpr std::size_t kMaxBytes = std::size_t{16} * 1024 * 1024;

// Stands for the place in lines that the logger itself writes.
constexpr char kLoggersPlace[] = "[logger]";

struct Line {
    std::string place;
    std::string text;
    std::chrono::system_clock::time_point time;
    bool urgent;
};

}  // namespace

struct SinkThread::State {
    void Run();
    void TakeAndWrite(std::unique_lock<std::mutex>& lock);
    void Write(const Line& line, bool flush);
    void DropOldest();

    // Position of the oldest line that is neither written nor lost, counted from the first that was posted.
    std::uint64_t Oldest() const { return inHand ? taken : posted - lines.size() + 1; }

    std::shared_ptr<spdlog::sinks::sink> sink;
    std::function<std::string(std::uint64_t)> lossText;
    std::uint64_t unflushed = 0;  // lines that the sink may still hold, told losses included; the thread's own

    std::mutex mutex;  // guards what follows
    std::condition_variable changed;
    std::deque<Line> lines;
    std::size_t bytes = 0;
    std::uint64_t posted = 0;
    std::uint64_t taken = 0;  // position of the line in hand
    std::uint64_t lost = 0;   // not yet told
    int waiting = 0;
    bool inHand = false;
    bool started = false;
    bool closing = false;
    bool abandoned = false;
    bool ended = false;
};

void SinkThread::State::Run() {
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return closing || (started && !lines.empty()); });
        if (abandoned || !started || lines.empty()) {
            break;
        }
        TakeAndWrite(lock);
        if (waiting > 0 || closing) {
            changed.notify_all();
        }
    }
    sink.reset();  // closes the file
    lossText = nullptr;
    ended = true;
    changed.notify_all();
}

void SinkThread::State::TakeAndWrite(std::unique_lock<std::mutex>& lock) {
    taken = Oldest();
    inHand = true;
    const Line line = std::move(lines.front());
    lines.pop_front();
    bytes -= line.text.size();
    // Buffered while busy, through when idle.
    const bool flush = line.urgent || waiting > 0 || lines.empty();
    const std::uint64_t lostBefore = std::exchange(lost, 0);
    lock.unlock();
    std::uint64_t lostNow = 0;
    unflushed += lostBefore + 1;
    try {
        if (lostBefore > 0) {
            Write({kLoggersPlace, lossText(lostBefore), line.time, false}, false);
        }
        Write(line, flush);
    } catch (...) {
        lostNow = std::exchange(unflushed, 0);
    }
    lock.lock();
    lost += lostNow;
    inHand = false;
}

void SinkThread::State::Write(const Line& line, bool flush) {
    sink->log(spdlog::details::log_msg(line.time, spdlog::source_loc(), line.place, spdlog::level::info, line.text));
    if (flush) {
        sink->flush();
        unflushed = 0;
    }
}

void SinkThread::State::DropOldest() {
    bytes -= lines.front().text.size();
    lines.pop_front();
    ++lost;
}

SinkThread::SinkThread(std::shared_ptr<spdlog::sinks::sink> sink, std::function<std::string(std::uint64_t)> lossText)
    : m_state(std::make_shared<State>()) {
    m_state->sink = std::move(sink);
    m_state->lossText = std::move(lossText);
    m_thread = std::thread([state = m_state] { state->Run(); });
}

SinkThread::~SinkThread() {
    if (m_thread.joinable()) {
        BeginToClose();
        Close(Clock::now(), std::chrono::milliseconds(0));
    }
}

void SinkThread::Post(std::string_view place, std::string_view text, bool urgent) noexcept {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    try {
        m_state->lines.push_back({std::string(place), std::string(text), std::chrono::system_clock::now(), urgent});
    } catch (...) {
        ++m_state->lost;
        return;
    }
    ++m_state->posted;
    m_state->bytes += text.size();
    const bool somebodyMayGoOn = m_state->lines.size() == 1 || m_state->waiting > 0;
    while (m_state->lines.size() > 1 && (m_state->lines.size() > kMaxLines || m_state->bytes > kMaxBytes)) {
        m_state->DropOldest();
    }
    // Waking costs as much as the rest. The thread waits only while there is no line.
    if (somebodyMayGoOn) {
        m_state->changed.notify_all();
    }
}

void SinkThread::Start() noexcept {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->started = true;
    m_state->changed.notify_all();
}

bool SinkThread::Wait(Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(m_state->mutex);
    const std::uint64_t target = m_state->posted;
    ++m_state->waiting;
    const bool done = m_state->changed.wait_until(lock, deadline, [&] { return m_state->Oldest() > target; });
    --m_state->waiting;
    return done;
}

void SinkThread::BeginToClose() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->closing = true;
    m_state->changed.notify_all();
}

void SinkThread::Close(Clock::time_point deadline, std::chrono::milliseconds longestStandstill) {
    std::unique_lock<std::mutex> lock(m_state->mutex);
    bool moved = true;
    while (moved && !m_state->ended && Clock::now() < deadline) {
        const std::uint64_t oldest = m_state->Oldest();
        moved = m_state->changed.wait_until(lock, std::min(deadline, Clock::now() + longestStandstill),
                                            [&] { return m_state->ended || m_state->Oldest() != oldest; });
    }
    m_state->abandoned = true;
    const bool ended = m_state->ended;
    lock.unlock();
    if (ended) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
}

}  // namespace suite
