#pragma once

#include "EndpointTable.h"
#include "OperationRecords.h"
#include "PlatformState.h"

namespace sandbox {

// The basic service: the last operations of an account by device. What the account's clients reported is listed as the
// asking device's, before the account's other devices. state and records must outlive the table.
void AddLoginDevicesEndpoint(EndpointTable& endpoints, const PlatformState& state, const OperationRecords& records);

}  // namespace sandbox
