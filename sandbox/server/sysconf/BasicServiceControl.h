#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "sysconf/AccountSettings.h"
#include "sysconf/OperationRecords.h"

namespace sandbox {

// The endpoints under /sandbox for the basic service: settings of the current account and the operations that it
// reported. The arguments must outlive the table.
void AddBasicServiceControl(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                            const OperationRecords& records);

}  // namespace sandbox
