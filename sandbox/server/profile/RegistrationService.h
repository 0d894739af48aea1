#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The registration place: what follows for an account from where it was registered. state must outlive the table.
void AddRegistrationEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
