#pragma once

#include "http/EndpointTable.h"

namespace sandbox {

// The routing service: tells a client which hosts serve its region.
void AddRoutingEndpoints(EndpointTable& endpoints);

}  // namespace sandbox
