#include "core/ServiceLog.h"

namespace userauth {

void WriteLog(LogSeverity severity, int line, const char* functionTag, const std::wstring& message) {
    Logger::Output(kLoggerModule, severity, line, functionTag, message, true);
}

}  // namespace userauth
