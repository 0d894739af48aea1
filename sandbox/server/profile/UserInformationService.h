#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The user-information service: an account's profile. state must outlive the table.
void AddUserInformationEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
