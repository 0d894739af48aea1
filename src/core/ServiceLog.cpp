#include "core/ServiceLog.h"

namespace userauth {

namespace {

constexpr int kSuiteModule = 0;

}  // namespace

void WriteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message) {
    Logger::Output(kLoggerModule, severity, line, functionTag, message, true);
}

void WriteSuiteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message) {
    Logger::Output(kSuiteModule, severity, line, functionTag, message, true);
}

}  // namespace userauth
