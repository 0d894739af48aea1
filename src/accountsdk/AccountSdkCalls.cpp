#include <json/value.h>

#include "UserAuthService.h"
#include "core/JsonText.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"

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

ZvIdErrorType UserAuthService::RegisterLogout(std::string& name, std::string& description) try {
    if (m_sdk.setLogoutEnable == nullptr) {
        return ZvIdErrorType::kEntryPointMissing;
    }
    Json::Value entry(Json::objectValue);
    entry["name"] = name;
    entry["description"] = description;
    return static_cast<ZvIdErrorType>(m_sdk.setLogoutEnable(userauth::WriteCompactLine(entry).c_str()));
} catch (...) {
    return ZvIdErrorType::kEntryPointMissing;
}

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
