#include "sysconf/AccountSettings.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace sandbox {
namespace {

// The last is one that the client does not know.
constexpr const char* kModuleSwitches[] = {
    "funcfg_contacts",      "funcfg_gallery",        "funcfg_notes", "funcfg_find_my_phone_globe",
    "funcfg_recordings_up", "funcfg_manage_storage", "funcfg_drive", "funcfg_unknown",
};

// What is off in the country of an account's registration.
struct SwitchedOff {
    std::string_view countryCode;
    std::string_view name;
};
constexpr SwitchedOff kSwitchedOff[] = {
    {"DE", "funcfg_drive"},
    {"DE", "funcfg_recordings_up"},
    {"RU", kClientSwitch},
    {"US", "funcfg_notes"},
};

// The platform writes switches as text.
Json::Value Switch(bool on) {
    return on ? "true" : "false";
}

Json::Value SwitchIn(std::string_view countryCode, std::string_view name) {
    return Switch(std::none_of(std::begin(kSwitchedOff), std::end(kSwitchedOff), [&](const SwitchedOff& off) {
        return off.countryCode == countryCode && off.name == name;
    }));
}

AccountSettings SettingsAtStart(const Account& account) {
    AccountSettings settings;
    for (const auto* name : kModuleSwitches) {
        settings.modules[name] = SwitchIn(account.countryCode, name);
    }
    settings.available = SwitchIn(account.countryCode, kClientSwitch);
    settings.userStatus = account.active ? 1 : 0;
    settings.clientLogReport = Switch(account.clientLogReport);
    settings.result = 0;
    return settings;
}

std::map<std::string, AccountSettings> AllAtStart(const std::vector<Account>& accounts) {
    std::map<std::string, AccountSettings> settings;
    for (const auto& account : accounts) {
        settings.emplace(account.userId, SettingsAtStart(account));
    }
    return settings;
}

}  // namespace

SettingsTable::SettingsTable(const std::vector<Account>& accounts)
    : m_atStart(AllAtStart(accounts)), m_settings(m_atStart) {}

AccountSettings SettingsTable::Of(const std::string& userId) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_settings.at(userId);
}

AccountSettings SettingsTable::Change(const std::string& userId, const std::function<void(AccountSettings&)>& change) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto& settings = m_settings.at(userId);
    change(settings);
    return settings;
}

void SettingsTable::Reset() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_settings = m_atStart;
}

}  // namespace sandbox
