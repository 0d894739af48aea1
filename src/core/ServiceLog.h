#pragma once

#include <Logger.h>

#include <string>

namespace userauth {

// Numbers in the suite's log: of this library, and of the suite as a whole.
inline constexpr int kLoggerModule = 10;
inline constexpr int kSuiteLoggerModule = 0;

// Writes one line of this library. line: __LINE__ of the call; functionTag: "Class::Method". For want of memory the
// line is lost: an operation that has stored its result does not fail for it.
inline void WriteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message) noexcept {
    try {
        Logger::Output(kLoggerModule, severity, line, functionTag, message, true);
    } catch (...) {
        return;
    }
}
inline void WriteLog(LogSeverity severity, int line, const char* functionTag, const wchar_t* message) noexcept {
    try {
        WriteLog(severity, line, functionTag, std::wstring(message));
    } catch (...) {
        return;
    }
}

// Writes a line under the suite's number instead. Two lines have always been there, and are kept there.
inline void WriteSuiteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message) {
    Logger::Output(kSuiteLoggerModule, severity, line, functionTag, message, true);
}

}  // namespace userauth
