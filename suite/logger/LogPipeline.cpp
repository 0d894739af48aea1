#include "LogPipeline.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <utility>

#include "LineText.h"
#include "LogFileName.h"
#include "MaskSecrets.h"
#include "OperationLine.h"
#include "RotatingFile.h"
#include "Utf8Text.h"

namespace suite {
namespace {

std::string_view ViewOf(spdlog::string_view_t text) {
    return {text.data(), text.size()};
}

// The last step before a file or the console: whatever a caller wrote, it is masked and escaped here.
class MaskingFormatter final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& destination) override {
        m_time.format(message, destination);
        const std::string text =
            EscapeForLog(ViewOf(message.logger_name)) + " " + EscapeForLog(MaskSecrets(ViewOf(message.payload)));
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

spdlog::sink_ptr OpenFile(const std::wstring& file, const LoggerSettings& settings,
                          std::unique_ptr<spdlog::formatter> formatter) {
    const LoggerSettings defaults;
    auto sink =
        std::make_shared<RotatingFile>(file, settings.maxFileBytes == 0 ? defaults.maxFileBytes : settings.maxFileBytes,
                                       settings.maxFiles == 0 ? defaults.maxFiles : settings.maxFiles);
    sink->set_formatter(std::move(formatter));
    return sink;
}

std::string LossText(std::uint64_t count) {
    return std::to_string(count) + " lines dropped";
}

}  // namespace

LogPipeline::LogPipeline(const LoggerSettings& settings) : m_consoleSeverity(settings.consoleSeverity) {
    const auto sink = [this](LogTarget target) -> std::unique_ptr<SinkThread>& {
        return m_sinks[static_cast<std::size_t>(target)];
    };
    if (!settings.file.empty()) {
        const LogFileName name = LogFileName::Take(settings.file);
        spdlog::sink_ptr file = OpenFile(name.Path(), settings, std::make_unique<MaskingFormatter>());
        spdlog::sink_ptr operations =
            OpenFile(name.Path() + L".operations.jsonl", settings, std::make_unique<JsonLineFormatter>());
        // The threads keep the name as long as they may write.
        sink(LogTarget::kFile) =
            std::make_unique<SinkThread>(std::move(file), [name](std::uint64_t count) { return LossText(count); });
        sink(LogTarget::kOperations) = std::make_unique<SinkThread>(
            std::move(operations), [name](std::uint64_t count) { return DroppedEventsLine(count); });
        if (name.IsSecondChoice()) {
            Post(LogTarget::kFile, true, "[logger]", "another process writes to " + Utf8FromWide(settings.file));
        }
    }
    if (settings.console) {
        // Not the sink with the lock that all of the program's console sinks share: a console that nobody reads would
        // hold it for ever.
        auto console = std::make_shared<spdlog::sinks::stderr_sink_st>();
        console->set_formatter(std::make_unique<MaskingFormatter>());
        sink(LogTarget::kConsole) = std::make_unique<SinkThread>(std::move(console), LossText);
    }
}

void LogPipeline::Post(LogTarget target, bool urgent, std::string_view place, std::string_view text) noexcept {
    SinkThread* const sink = m_sinks[static_cast<std::size_t>(target)].get();
    if (sink != nullptr) {
        sink->Post(place, text, urgent);
    }
}

void LogPipeline::Start() noexcept {
    for (const std::unique_ptr<SinkThread>& sink : m_sinks) {
        if (sink != nullptr) {
            sink->Start();
        }
    }
}

bool LogPipeline::Wait(std::chrono::milliseconds timeout) {
    const SinkThread::Clock::time_point deadline = SinkThread::Clock::now() + timeout;
    bool done = true;
    for (const std::unique_ptr<SinkThread>& sink : m_sinks) {
        done = (sink == nullptr || sink->Wait(deadline)) && done;
    }
    return done;
}

void LogPipeline::Close() {
    for (const std::unique_ptr<SinkThread>& sink : m_sinks) {
        if (sink != nullptr) {
            sink->BeginToClose();
        }
    }
    const SinkThread::Clock::time_point deadline =
        SinkThread::Clock::now() + std::chrono::milliseconds(kLongestShutdownMilliseconds);
    for (const std::unique_ptr<SinkThread>& sink : m_sinks) {
        if (sink != nullptr) {
            sink->Close(deadline, std::chrono::milliseconds(kLongestStandstillMilliseconds));
        }
    }
}

}  // namespace suite
