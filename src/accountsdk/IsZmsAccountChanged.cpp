#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"

bool UserAuthService::IsZmsAccountChanged(std::wstring& userId) try {
    constexpr char kTag[] = "UserAuthService::IsZmsAccountChanged";
    constexpr int kAccountChanged = 11;
    if (userId.empty()) {
        userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"IsZmsAccountChanged: usedid is null");
        return false;
    }
    if (m_sdk.hasAccountChanged != nullptr) {
        const std::string userIdText = userauth::WideToMultiByte(userId, userauth::kUtf8CodePage);
        const int code = m_sdk.hasAccountChanged(userIdText.c_str());
        userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"IsZmsAccountChanged:" + std::to_wstring(code));
        if (code == kAccountChanged) {
            return true;
        }
    }
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag, L"IsZmsAccountChanged: return false");
    return false;
} catch (...) {
    return false;
}
