#pragma once

#include "EndpointTable.h"
#include "Faults.h"
#include "PlatformState.h"
#include "TrafficLog.h"

namespace sandbox {

// The endpoints under /sandbox: sign-in for the account SDK, the device's session, clock and tokens, faults and a look
// at the traffic. The arguments must outlive the table.
void AddSandboxEndpoints(EndpointTable& endpoints, PlatformState& state, FaultTable& faults, const TrafficLog& traffic);

}  // namespace sandbox
