#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "synckey/UserKeyService.h"

namespace sandbox {

// The endpoints under /sandbox for the user keys: what the current account's keys are, how key lists are made, what is
// served for the server's key. The arguments must outlive the table.
void AddUserKeyControl(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys);

}  // namespace sandbox
