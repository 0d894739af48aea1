#include "request/RequestLog.h"

#include "core/ServiceLog.h"
#include "core/TextEncoding.h"

namespace userauth {

std::wstring SummaryLine(const char* operation, const std::wstring& url, int httpCode) {
    const std::string line = std::string(operation) + "\nUrl:" + WideToMultiByte(url, kUtf8CodePage) +
                             "\nHttpCode:" + std::to_string(httpCode);
    return MultiByteToWide(line, kUtf8CodePage);
}

BasicHttpLibStrategy::LogFunction HttpLogHook(LogSeverity severity, const char* functionTag) {
    // Called from the middle of a transfer, which must not unwind: WriteLog throws nothing.
    return [severity, functionTag](const std::wstring& message) { WriteLog(severity, __LINE__, functionTag, message); };
}

}  // namespace userauth
