#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The portal: tokens of the client application itself. state must outlive the table.
void AddApplicationTokenEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
