#pragma once

#include <array>
#include <chrono>
#include <memory>
#include <string_view>

#include "Logger.h"
#include "SinkThread.h"

namespace suite {

enum class LogTarget : std::size_t { kFile, kConsole, kOperations };

// The open sinks, each with its queue and thread. Construction throws when a file cannot be opened. Lines wait in the
// queues until Start: two that append to one file at once would overwrite each other's lines.
class LogPipeline {
public:
    explicit LogPipeline(const LoggerSettings& settings);
    LogPipeline(const LogPipeline&) = delete;
    LogPipeline& operator=(const LogPipeline&) = delete;

    // Queues a line for a target that is open; does nothing for one that is not. UTF-8; the text is masked by name when
    // it is written, the place and events are masked already. urgent: written through to the file at once. Any thread.
    void Post(LogTarget target, bool urgent, std::string_view place, std::string_view text) noexcept;

    void Start() noexcept;

    // Waits until what was posted before has been written or lost. Any thread, also while another closes the sinks.
    bool Wait(std::chrono::milliseconds timeout);

    // Writes what is queued, as far as Logger::Shutdown promises, and closes the sinks. Nothing may be posted any more.
    void Close();

    int ConsoleSeverity() const { return m_consoleSeverity; }

private:
    int m_consoleSeverity;
    std::array<std::unique_ptr<SinkThread>, 3> m_sinks;  // by LogTarget; null: not open
};

}  // namespace suite
