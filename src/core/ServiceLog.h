#pragma once

#include <Logger.h>

#include <string>

namespace userauth {

// Number of this library in the suite's log.
inline constexpr int kLoggerModule = 10;

// Writes one line of this library. line: __LINE__ of the call; functionTag: "Class::Method".
void WriteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message);

// Writes a line under module 0 instead, as two lines deliberately are: evaluations of the whole suite look for them
// there.
void WriteSuiteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message);

}  // namespace userauth
