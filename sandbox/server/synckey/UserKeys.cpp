#include "synckey/UserKeys.h"

#include <stdexcept>

#include "crypto/RandomText.h"

namespace sandbox {

UserKeys::UserKeys(const std::vector<Account>& accounts) {
    for (const auto& account : accounts) {
        for (const auto dataType : kUserKeyDataTypes) {
            m_keys[account.userId].emplace(
                dataType, UserKeyPair{{1, RandomUuid(), RandomBytes(16)}, {3, RandomUuid(), RandomBytes(32)}});
        }
    }
}

const UserKeyPair& UserKeys::Of(const std::string& userId, std::string_view dataType) const {
    const auto& pairs = m_keys.at(userId);
    const auto found = pairs.find(dataType);
    if (found == pairs.end()) {
        throw std::out_of_range("there are no user keys for that data type");
    }
    return found->second;
}

}  // namespace sandbox
