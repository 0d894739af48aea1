#pragma once

#include <array>
#include <memory>
#include <string>

#include "Logger.h"
#include "QueueProgress.h"

namespace spdlog {
class async_logger;
namespace details {
class thread_pool;
}
}  // namespace spdlog

namespace suite {

enum class LogTarget : std::size_t { kFile, kConsole, kOperations };

// The open sinks, the queue before them and the thread that empties it. Construction throws when a file cannot be
// opened; destruction writes what is queued and ends the thread.
class LogPipeline {
public:
    explicit LogPipeline(const LoggerSettings& settings);
    ~LogPipeline();
    LogPipeline(const LogPipeline&) = delete;
    LogPipeline& operator=(const LogPipeline&) = delete;

    // Queues a line (UTF-8, unmasked but for operations) for a target that is open; does nothing for one that is not.
    // urgent: written through to the file at once. Any thread. Throws when memory is short; nothing was queued then.
    void Post(LogTarget target, bool urgent, const std::string& line);

    int ConsoleSeverity() const { return m_consoleSeverity; }
    // Shared, so that a caller may go on waiting while the pipeline is taken down.
    std::shared_ptr<QueueProgress> Progress() const { return m_progress; }

private:
    int m_consoleSeverity;
    std::shared_ptr<QueueProgress> m_progress;
    std::array<std::shared_ptr<spdlog::async_logger>, 3> m_loggers;  // by LogTarget
    std::shared_ptr<spdlog::details::thread_pool> m_pool;            // last member: its thread ends first
};

}  // namespace suite
