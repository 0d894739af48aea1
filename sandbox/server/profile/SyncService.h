#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The sync server: the user id of the drive's owner. state must outlive the table.
void AddSyncEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
