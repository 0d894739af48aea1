#include "request/HttpLogHook.h"

#include "core/ServiceLog.h"

namespace userauth {

BasicHttpLibStrategy::LogFunction HttpLogHook(LogSeverity severity, const char* functionTag) {
    return [severity, functionTag](const std::wstring& message) {
        try {
            WriteLog(severity, __LINE__, functionTag, message);
        } catch (...) {
            return;  // called from the middle of a transfer, which must not unwind
        }
    };
}

}  // namespace userauth
