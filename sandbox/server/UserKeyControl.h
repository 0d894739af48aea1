#pragma once

#include "EndpointTable.h"
#include "PlatformState.h"
#include "UserKeyService.h"

namespace sandbox {

// The endpoints under /sandbox for the user keys: what the current account's keys are, how key lists are made, what is
// served for the server's key. The arguments must outlive the table.
void AddUserKeyControl(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys);

}  // namespace sandbox
