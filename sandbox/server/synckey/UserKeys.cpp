#include "synckey/UserKeys.h"

#include <stdexcept>

#include <openssl/rand.h>

#include "crypto/OpenSslTypes.h"
#include "crypto/Sha256.h"

namespace sandbox {
namespace {

constexpr std::size_t kUuidBytes = 16;

UserKeyPair NewKeyPair() {
    return {{1, RandomUuid(), RandomKey(16)}, {3, RandomUuid(), RandomKey(32)}};
}

}  // namespace

SecretBytes RandomKey(std::size_t size) {
    SecretBytes key(size);
    RequireOpenSsl(RAND_bytes(key.data(), static_cast<int>(size)) == 1, "drawing a key");
    return key;
}

std::string RandomUuid() {
    return LowerHex(RandomKey(kUuidBytes));
}

UserKeys::UserKeys(const std::vector<Account>& accounts) {
    for (const auto& account : accounts) {
        for (const auto dataType : kUserKeyDataTypes) {
            m_keys[account.userId].emplace(dataType, NewKeyPair());
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
