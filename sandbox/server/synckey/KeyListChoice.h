#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "synckey/KeyListVariants.h"

namespace sandbox {

// How the key lists of each data type are made at present; plain until something else is chosen. All operations may be
// called from any thread.
class KeyListChoice {
public:
    KeyListChoice();
    // Both throw std::out_of_range for another data type than those of user keys.
    void Choose(std::string_view dataType, const KeyListVariant& variant);
    Json::Value Make(std::string_view dataType, const KeyListOrder& order) const;

private:
    mutable std::mutex m_lock;
    std::map<std::string_view, const KeyListVariant*> m_variants;  // by data type; guarded by m_lock
};

}  // namespace sandbox
