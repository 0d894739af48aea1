#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "sysconf/AccountSettings.h"
#include "sysconf/OperationRecords.h"

namespace sandbox {

// The basic service: an account's configuration, its activation, operation records and whether its logs are wanted.
// The arguments must outlive the table.
void AddBasicServiceEndpoints(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                              OperationRecords& records);

}  // namespace sandbox
