#include "Logger.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include "LineText.h"
#include "LogPipeline.h"
#include "MaskSecrets.h"
#include "OperationLine.h"
#include "ProcessState.h"
#include "SecretValues.h"
#include "Utf8Text.h"

namespace suite {
namespace {

struct LoggerState {
    std::mutex configureMutex;  // one Configure or Shutdown at a time; held while files open and the queues drain
    std::mutex mutex;           // guards pipeline; held while a line is queued, never while one is written
    std::shared_ptr<LogPipeline> pipeline;
    KnownSecrets secrets;
    std::atomic<bool> open{false};  // saves the work on lines that nobody wants
};

// Never destroyed. The sinks' threads must not be joined by static destructors: at process exit they have been ended
// already, and under the loader lock they cannot end. Logger::Shutdown is the one way to take them down.
LoggerState& State() {
    static LoggerState* const state = new LoggerState;
    return *state;
}

bool IsOpen() {
    return !ProcessIsEnding() && State().open.load(std::memory_order_relaxed);
}

// Swaps the pipeline in. What it replaces is drained and closed here, after other callers have the new one; the new one
// writes from then on.
void Replace(const std::shared_ptr<LogPipeline>& pipeline) {
    LoggerState& state = State();
    std::shared_ptr<LogPipeline> former = pipeline;
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        state.open.store(pipeline != nullptr, std::memory_order_relaxed);
        std::swap(state.pipeline, former);
    }
    if (former != nullptr) {
        former->Close();
    }
    if (pipeline != nullptr) {
        pipeline->Start();
    }
}

// The tag is masked before the colon is added: behind a tag that ends in "Token" the line number would be taken for a
// secret.
std::string PlaceOf(int moduleType, int severity, int line, const std::string& functionTag) {
    std::string place = "[module ";
    place.reserve(functionTag.size() + 64);
    place.append(std::to_string(moduleType)).append("] [").append(SeverityName(severity)).append("] ");
    return place.append(MaskSecrets(functionTag)).append(":").append(std::to_string(line));
}

// Nothing leaves the logger: a reason for which there is no memory is a short one.
void Tell(const char* reason, std::string& error) noexcept {
    try {
        error = reason;
    } catch (...) {
        error = "out of memory";  // takes none
    }
}

}  // namespace
}  // namespace suite

using suite::IsOpen;
using suite::LogPipeline;
using suite::LogTarget;
using suite::State;

bool Logger::Configure(const LoggerSettings& settings, std::string& error) {
    if (suite::ProcessIsEnding()) {
        error = "the process is ending";
        return false;
    }
    try {
        suite::PinThisModule();
        const std::lock_guard<std::mutex> lock(State().configureMutex);
        suite::Replace(std::make_shared<LogPipeline>(settings));
        return true;
    } catch (const std::exception& failure) {
        suite::Tell(failure.what(), error);
    } catch (...) {
        suite::Tell("unknown failure", error);
    }
    return false;
}

void Logger::Output(int moduleType, int severity, int line, const std::string& functionTag, const std::wstring& message,
                    bool toFile) {
    if (!IsOpen()) {
        return;
    }
    try {
        const std::string place = suite::PlaceOf(moduleType, severity, line, functionTag);
        const std::string text = suite::LogTextOf(message, State().secrets.Current().get());
        const bool urgent = severity >= kSeverityFailure;
        const std::lock_guard<std::mutex> lock(State().mutex);
        LogPipeline* const pipeline = State().pipeline.get();
        if (pipeline != nullptr && toFile) {
            pipeline->Post(LogTarget::kFile, urgent, place, text);
        }
        if (pipeline != nullptr && severity >= pipeline->ConsoleSeverity()) {
            pipeline->Post(LogTarget::kConsole, urgent, place, text);
        }
    } catch (...) {
        // Out of memory: the line is lost, the caller goes on.
    }
}

void Logger::OutputOperationLog(int basicEventType, int operationType, int actionType) {
    OutputOperationLog(basicEventType, operationType, actionType, {});
}

void Logger::OutputOperationLog(int basicEventType, int operationType, int actionType,
                                const std::map<std::wstring, std::wstring>& extraInformation) {
    if (!IsOpen()) {
        return;
    }
    try {
        const std::string text = suite::OperationLine(basicEventType, operationType, actionType, extraInformation,
                                                      State().secrets.Current().get());
        const std::lock_guard<std::mutex> lock(State().mutex);
        if (State().pipeline != nullptr) {
            State().pipeline->Post(LogTarget::kOperations, false, {}, text);
        }
    } catch (...) {
        // Out of memory: the event is lost, the caller goes on.
    }
}

bool Logger::SetSecret(const std::string& name, const std::wstring& value) {
    if (suite::ProcessIsEnding()) {
        return false;
    }
    try {
        return State().secrets.Set(name, suite::Utf8FromWide(value));
    } catch (...) {
        return false;  // out of memory
    }
}

bool Logger::Flush(int timeoutMilliseconds) {
    if (!IsOpen()) {
        return true;  // nothing is queued, or nothing can be waited for any more
    }
    try {
        std::shared_ptr<LogPipeline> pipeline;
        {
            const std::lock_guard<std::mutex> lock(State().mutex);
            pipeline = State().pipeline;
        }
        return pipeline == nullptr || pipeline->Wait(std::chrono::milliseconds(std::max(timeoutMilliseconds, 0)));
    } catch (...) {
        return false;
    }
}

void Logger::Shutdown() {
    if (suite::ProcessIsEnding()) {
        return;
    }
    try {
        const std::lock_guard<std::mutex> lock(State().configureMutex);
        suite::Replace(nullptr);
    } catch (...) {
        // Locks that fail mean a process in ruins; there is nothing to save here.
    }
}
