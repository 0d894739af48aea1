#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <json/value.h>

#include "state/Accounts.h"

namespace sandbox {

// Whether the client may be used at all.
inline constexpr const char* kClientSwitch = "funcfg_pc_available";

// What the basic service answers about one account. Any JSON value may stand for the right one, so that a client can be
// given wrong ones.
struct AccountSettings {
    Json::Value modules{Json::objectValue};  // the other switches by name
    Json::Value available;                   // the value of kClientSwitch
    Json::Value userStatus;                  // 1 active, 0 not active
    Json::Value clientLogReport;
    Json::Value result;  // of every reply; 0 is success
};

// The settings of all accounts by user id. All operations may be called from any thread.
class SettingsTable {
public:
    explicit SettingsTable(const std::vector<Account>& accounts);

    // Throws std::out_of_range for the user id of no account, as Change does.
    AccountSettings Of(const std::string& userId) const;
    // change runs under the table's lock; returns what it leaves.
    AccountSettings Change(const std::string& userId, const std::function<void(AccountSettings&)>& change);
    void Reset();

private:
    const std::map<std::string, AccountSettings> m_atStart;
    mutable std::mutex m_lock;
    std::map<std::string, AccountSettings> m_settings;  // guarded by m_lock
};

}  // namespace sandbox
