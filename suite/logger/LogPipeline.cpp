#include "LogPipeline.h"

#include <spdlog/async.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <utility>
#include <vector>

#include "LineText.h"
#include "MaskSecrets.h"

namespace suite {
namespace {

// The slots are allocated at once. At a thousand lines a second the disk may stand still for four seconds before
// lines are lost.
constexpr std::size_t kQueueLines = 4096;

// The last step before a file or the console: whatever a caller wrote, it is masked and escaped here.
class MaskingFormatter final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& destination) override {
        m_time.format(message, destination);
        const std::string text =
            EscapeForLog(MaskSecrets(std::string_view(message.payload.data(), message.payload.size())));
        destination.append(text.data(), text.data() + text.size());
        destination.push_back('\n');
    }

    std::unique_ptr<spdlog::formatter> clone() const override { return std::make_unique<MaskingFormatter>(); }

private:
    spdlog::pattern_formatter m_time{"%Y-%m-%d %H:%M:%S.%e ", spdlog::pattern_time_type::local, ""};
};

// Writes the payload as it is: operation events come masked, as finished JSON.
class JsonLineFormatter final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& destination) override {
        destination.append(message.payload.data(), message.payload.data() + message.payload.size());
        destination.push_back('\n');
    }

    std::unique_ptr<spdlog::formatter> clone() const override { return std::make_unique<JsonLineFormatter>(); }
};

// Counts what passes, and flushes all sinks when the queue has run empty: buffered while busy, on disk when idle.
class CountingSink final : public spdlog::sinks::sink {
public:
    CountingSink(spdlog::sink_ptr inner, std::shared_ptr<const std::vector<spdlog::sink_ptr>> all,
                 std::shared_ptr<QueueProgress> progress)
        : m_inner(std::move(inner)), m_all(std::move(all)), m_progress(std::move(progress)) {}

    void log(const spdlog::details::log_msg& message) override {
        const WrittenAtExit written{*m_progress};
        m_inner->log(message);
        if (m_progress->ShouldFlush()) {
            for (const spdlog::sink_ptr& target : *m_all) {
                target->flush();
            }
        }
    }
    void flush() override { m_inner->flush(); }
    void set_pattern(const std::string& pattern) override { m_inner->set_pattern(pattern); }
    void set_formatter(std::unique_ptr<spdlog::formatter> formatter) override {
        m_inner->set_formatter(std::move(formatter));
    }

private:
    // A line that cannot be written counts too, or everybody who waits would run into the time-out.
    struct WrittenAtExit {
        QueueProgress& progress;
        ~WrittenAtExit() { progress.Written(); }
    };

    spdlog::sink_ptr m_inner;
    std::shared_ptr<const std::vector<spdlog::sink_ptr>> m_all;
    std::shared_ptr<QueueProgress> m_progress;
};

spdlog::sink_ptr OpenFile(const std::wstring& file, const LoggerSettings& settings,
                          std::unique_ptr<spdlog::formatter> formatter) {
    const LoggerSettings defaults;
    auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
        file, settings.maxFileBytes == 0 ? defaults.maxFileBytes : settings.maxFileBytes,
        settings.maxFiles == 0 ? defaults.maxFiles : settings.maxFiles);
    sink->set_formatter(std::move(formatter));
    return sink;
}

// By LogTarget; null where the settings name no such sink.
std::vector<spdlog::sink_ptr> OpenSinks(const LoggerSettings& settings) {
    std::vector<spdlog::sink_ptr> sinks(3);
    if (!settings.file.empty()) {
        sinks[0] = OpenFile(settings.file, settings, std::make_unique<MaskingFormatter>());
        sinks[2] = OpenFile(settings.file + L".operations.jsonl", settings, std::make_unique<JsonLineFormatter>());
    }
    if (settings.console) {
        sinks[1] = std::make_shared<spdlog::sinks::stderr_sink_mt>();
        sinks[1]->set_formatter(std::make_unique<MaskingFormatter>());
    }
    return sinks;
}

}  // namespace

LogPipeline::LogPipeline(const LoggerSettings& settings)
    : m_consoleSeverity(settings.consoleSeverity), m_progress(std::make_shared<QueueProgress>()) {
    const std::vector<spdlog::sink_ptr> sinks = OpenSinks(settings);
    auto open = std::make_shared<std::vector<spdlog::sink_ptr>>();
    for (const spdlog::sink_ptr& sink : sinks) {
        if (sink != nullptr) {
            open->push_back(sink);
        }
    }
    m_pool = std::make_shared<spdlog::details::thread_pool>(kQueueLines, 1);
    for (std::size_t i = 0; i < sinks.size(); ++i) {
        if (sinks[i] != nullptr) {
            auto counting = std::make_shared<CountingSink>(sinks[i], open, m_progress);
            m_loggers[i] = std::make_shared<spdlog::async_logger>("client", std::move(counting), m_pool,
                                                                  spdlog::async_overflow_policy::overrun_oldest);
            m_loggers[i]->flush_on(spdlog::level::err);
            // The default handler writes to standard error, unmasked. A sink's failure has nowhere to be told.
            m_loggers[i]->set_error_handler([](const std::string&) {});
        }
    }
}

LogPipeline::~LogPipeline() = default;

void LogPipeline::Post(LogTarget target, bool urgent, const std::string& line) {
    const auto& logger = m_loggers[static_cast<std::size_t>(target)];
    if (logger != nullptr) {
        // Past the logger's own call, which swallows a failure: a line that was not queued must not be counted.
        const spdlog::details::log_msg message(logger->name(), urgent ? spdlog::level::err : spdlog::level::info, line);
        m_pool->post_log(std::shared_ptr<spdlog::async_logger>(logger), message,
                         spdlog::async_overflow_policy::overrun_oldest);
        m_progress->Queued(m_pool->overrun_counter());
    }
}

}  // namespace suite
