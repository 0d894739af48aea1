#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The gateway: the user id that an access token stands for. state must outlive the table.
void AddGatewayEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
