#include "synckey/KeyListChoice.h"

namespace sandbox {

KeyListChoice::KeyListChoice() {
    for (const auto dataType : kUserKeyDataTypes) {
        m_variants[dataType] = FindKeyListVariant(kPlainKeyList);
    }
}

void KeyListChoice::Choose(std::string_view dataType, const KeyListVariant& variant) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_variants.at(dataType) = &variant;
}

Json::Value KeyListChoice::Make(std::string_view dataType, const KeyListOrder& order) const {
    std::unique_lock<std::mutex> lock(m_lock);
    const auto* variant = m_variants.at(dataType);
    lock.unlock();
    return variant->make(order);
}

}  // namespace sandbox
