#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The portal: a new access token for a refresh token. state must outlive the table.
void AddRefreshEndpoint(EndpointTable& endpoints, PlatformState& state);

}  // namespace sandbox
