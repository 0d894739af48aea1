#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The portal: exchange of authorization codes for tokens. state must outlive the table.
void AddPortalEndpoints(EndpointTable& endpoints, PlatformState& state);

}  // namespace sandbox
