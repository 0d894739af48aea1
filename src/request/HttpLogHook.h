#pragma once

#include <HttpLib.h>
#include <Logger.h>

namespace userauth {

// A log function for the HTTP library that writes its messages unchanged. functionTag is the hook's own qualified name,
// fixed by the caller, because every compiler names a lambda differently; it must outlive the strategy.
BasicHttpLibStrategy::LogFunction HttpLogHook(LogSeverity severity, const char* functionTag);

}  // namespace userauth
