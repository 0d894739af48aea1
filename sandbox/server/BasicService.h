#pragma once

#include "AccountSettings.h"
#include "EndpointTable.h"
#include "OperationRecords.h"
#include "PlatformState.h"

namespace sandbox {

// The basic service: an account's configuration, its activation, operation records and whether its logs are wanted.
// The arguments must outlive the table.
void AddBasicServiceEndpoints(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                              OperationRecords& records);

}  // namespace sandbox
