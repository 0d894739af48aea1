#pragma once

#include <vector>

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "synckey/KeyExchange.h"
#include "synckey/KeyListChoice.h"
#include "synckey/UserKeys.h"

namespace sandbox {

// What the endpoints of the user keys work on.
struct UserKeyPlatform {
    explicit UserKeyPlatform(const std::vector<Account>& accounts) : keys(accounts) {}

    const UserKeys keys;
    KeyExchange exchange;
    KeyListChoice lists;
};

// The user-information service: the server's public key and the key lists of an account. state and userKeys must
// outlive the table.
void AddUserKeyEndpoints(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys);

}  // namespace sandbox
