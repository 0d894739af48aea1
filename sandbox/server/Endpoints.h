#pragma once

#include "http/EndpointTable.h"
#include "http/Faults.h"
#include "http/TrafficLog.h"
#include "state/PlatformState.h"
#include "state/SignInRequests.h"

namespace sandbox {

// The routing service: tells a client which hosts serve its region.
void AddRoutingEndpoints(EndpointTable& endpoints);
// Under /sandbox: sign-in for the account SDK, the device's session, clock and tokens, faults and a look at the
// traffic. The arguments must outlive the table. Who may send these: page/BrowserGuard.h.
void AddSandboxEndpoints(EndpointTable& endpoints, PlatformState& state, SignInRequests& signIns, FaultTable& faults,
                         const TrafficLog& traffic);

}  // namespace sandbox
