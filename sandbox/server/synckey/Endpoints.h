#pragma once

#include <vector>

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "synckey/KeyExchange.h"
#include "synckey/KeyListVariants.h"
#include "synckey/UserKeys.h"

namespace sandbox {

// What the endpoints of the user keys work on.
struct UserKeyPlatform {
    explicit UserKeyPlatform(const std::vector<Account>& accounts) : keys(accounts) {}

    const UserKeys keys;
    KeyExchange exchange;
    KeyListChoice lists;
};

// The arguments of both must outlive the table.
// The user-information service: the server's public key and the key lists of an account.
void AddUserKeyEndpoints(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys);
// Under /sandbox: what the current account's keys are, how key lists are made, what is served for the server's key.
void AddUserKeyControl(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys);

}  // namespace sandbox
