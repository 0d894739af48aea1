#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "sysconf/OperationRecords.h"

namespace sandbox {

// The basic service: the last operation of each device of an account. The latest one that the account's clients
// reported is the asking device's, which comes first; the account's other devices are always there. state and records
// must outlive the table.
void AddLoginDevicesEndpoint(EndpointTable& endpoints, const PlatformState& state, const OperationRecords& records);

}  // namespace sandbox
