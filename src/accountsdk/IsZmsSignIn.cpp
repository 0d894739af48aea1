#include "UserAuthService.h"
#include "core/ServiceLog.h"

bool UserAuthService::IsZmsSignIn() try {
    if (m_sdk.isAccountLoggedIn == nullptr) {
        return false;
    }
    const int code = m_sdk.isAccountLoggedIn();
    userauth::WriteLog(kSeverityProgress, __LINE__, "UserAuthService::IsZmsSignIn",
                       L"IsZmsSignIn:" + std::to_wstring(code));
    return code == 0;
} catch (...) {
    return false;
}
