#include <json/value.h>

#include "UserAuthService.h"
#include "core/JsonText.h"

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
