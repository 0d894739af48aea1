#pragma once

#include "AccountSettings.h"
#include "EndpointTable.h"
#include "OperationRecords.h"
#include "PlatformState.h"

namespace sandbox {

// The endpoints under /sandbox for the basic service: settings of the current account and the operations that it
// reported. The arguments must outlive the table.
void AddBasicServiceControl(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                            const OperationRecords& records);

}  // namespace sandbox
