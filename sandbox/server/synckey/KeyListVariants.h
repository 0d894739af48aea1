#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include <json/value.h>

#include "synckey/UserKeys.h"

namespace sandbox {

// What one key list is made of. Both must outlive the making.
struct KeyListOrder {
    const UserKeyPair& keys;
    const std::string& temporaryKey;  // everything in the list is wrapped under it
};

// A way of making the reply {"keys": [...]}, by which clients can be shown lists that are not quite right.
struct KeyListVariant {
    std::string_view name;
    Json::Value (*make)(const KeyListOrder&);
};

inline constexpr std::string_view kPlainKeyList = "plain";

// Null when there is none of that name.
const KeyListVariant* FindKeyListVariant(std::string_view name);
// All names, separated by commas.
std::string KeyListVariantNames();

// How the key lists of each data type are made at present; plain until something else is chosen. All operations may be
// called from any thread.
class KeyListChoice {
public:
    KeyListChoice();
    // Both throw std::out_of_range for another data type than those of user keys.
    void Choose(std::string_view dataType, const KeyListVariant& variant);
    Json::Value Make(std::string_view dataType, const KeyListOrder& order) const;
    // Plain again, for all data types.
    void Reset();

private:
    mutable std::mutex m_lock;
    std::map<std::string_view, const KeyListVariant*> m_variants;  // by data type; guarded by m_lock
};

}  // namespace sandbox
