#include "UserAuthService.h"
#include "core/ServiceLog.h"

ZvIdErrorType UserAuthService::OpenAccountCenterInvoke() try {
    constexpr char kTag[] = "UserAuthService::OpenAccountCenterInvoke";
    if (m_sdk.openAccountCenter == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    const int code = m_sdk.openAccountCenter();
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"OpenAccountCenterInvoke:" + std::to_wstring(code));
    if (code != 0) {
        userauth::WriteLog(kSeverityFailure, __LINE__, kTag,
                           L"Error: OpenAccoutCenter failed: " + std::to_wstring(code));
    }
    return static_cast<ZvIdErrorType>(code);
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}
