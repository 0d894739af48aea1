#pragma once

#include <HttpLib.h>
#include <Logger.h>

#include <string>

namespace userauth {

// The line that each exchange leaves in the log: operation, URL and HTTP code, each on a line of its own.
std::wstring SummaryLine(const char* operation, const std::wstring& url, int httpCode);

// A log function for the HTTP library that writes its messages unchanged. functionTag is the hook's own qualified name,
// fixed by the caller, because every compiler names a lambda differently; it must outlive the strategy.
BasicHttpLibStrategy::LogFunction HttpLogHook(LogSeverity severity, const char* functionTag);

}  // namespace userauth
