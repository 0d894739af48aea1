#pragma once

#include <string>
#include <string_view>

#include <json/value.h>

#include "synckey/UserKeys.h"

namespace sandbox {

// What one key list is made of. Both must outlive the making.
struct KeyListOrder {
    const UserKeyPair& keys;
    const SecretBytes& temporaryKey;  // everything in the list is wrapped under it
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

}  // namespace sandbox
