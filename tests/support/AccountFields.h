#pragma once

#include <map>
#include <string>

#include "TextFile.h"
#include "UserAuthService.h"

// Values by their names, so that a failed comparison shows which one differs.
using Fields = std::map<std::string, std::wstring>;

// What the account state holds; what is empty, 0 or false is left out.
inline Fields AccountFields(UserAuthService& service) {
    std::wstring modules;
    for (const std::wstring& module : service.GetValidModule()) {
        modules += module + L" ";
    }
    Fields fields = {
        {"access token", service.GetCurrentAT()},
        {"refresh token", service.GetCurrentRT()},
        {"user id", service.GetCurrentUserID()},
        {"user name", service.GetCurrentUserName()},
        {"portrait URL", service.GetCurrentUserHeadImageUrl()},
        {"portrait path", service.GetCurrentUserHeadImageLocalPath()},
        {"account brand", std::to_wstring(service.GetCurrentUserAccountBrandID())},
        {"country", service.GetCurrentCountryCode()},
        {"language", Wide(service.GetLanguageType())},
        {"modules", modules},
        {"privilege", std::to_wstring(service.GetCurrentPriviledge())},
        {"client log report", std::to_wstring(service.GetClientLogReportStatus())},
        {"active account", std::to_wstring(service.IsActiveAccount())},
        {"available country", std::to_wstring(service.IsAvailableCountry())},
    };
    for (auto field = fields.begin(); field != fields.end();) {
        field = field->second.empty() || field->second == L"0" ? fields.erase(field) : std::next(field);
    }
    return fields;
}
