#pragma once

#include <map>
#include <string>

#include "UserAuthService.h"

// Values by their names, so that a failed comparison shows which one differs.
using Fields = std::map<std::string, std::wstring>;

// What the account state holds; what is empty, 0 or false is left out.
inline Fields AccountFields(UserAuthService& service) {
    const std::string language = service.GetLanguageType();
    const int brand = service.GetCurrentUserAccountBrandID();
    std::wstring modules;
    for (const std::wstring& module : service.GetValidModule()) {
        modules += module + L" ";
    }
    const auto flag = [](bool set) { return set ? L"true" : L""; };
    Fields fields = {
        {"access token", service.GetCurrentAT()},
        {"refresh token", service.GetCurrentRT()},
        {"user id", service.GetCurrentUserID()},
        {"user name", service.GetCurrentUserName()},
        {"portrait URL", service.GetCurrentUserHeadImageUrl()},
        {"portrait path", service.GetCurrentUserHeadImageLocalPath()},
        {"account brand", brand == 0 ? L"" : std::to_wstring(brand)},
        {"country", service.GetCurrentCountryCode()},
        {"language", {language.begin(), language.end()}},
        {"modules", modules},
        {"privilege", flag(service.GetCurrentPriviledge())},
        {"client log report", flag(service.GetClientLogReportStatus())},
        {"active account", flag(service.IsActiveAccount())},
        {"available country", flag(service.IsAvailableCountry())},
    };
    for (auto field = fields.begin(); field != fields.end();) {
        field = field->second.empty() ? fields.erase(field) : std::next(field);
    }
    return fields;
}
