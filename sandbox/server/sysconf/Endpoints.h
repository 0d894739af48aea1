#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"
#include "sysconf/AccountSettings.h"
#include "sysconf/OperationRecords.h"

// The basic service. The arguments must outlive the table.
namespace sandbox {

// An account's configuration, its activation, operation records and whether its logs are wanted.
void AddBasicServiceEndpoints(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                              OperationRecords& records);
// The last operation of each device of an account. The latest one that the account's clients reported is the asking
// device's, which comes first; the account's other devices are always there.
void AddLoginDevicesEndpoint(EndpointTable& endpoints, const PlatformState& state, const OperationRecords& records);
// Under /sandbox: settings of the current account and the operations that it reported.
void AddBasicServiceControl(EndpointTable& endpoints, const PlatformState& state, SettingsTable& settings,
                            const OperationRecords& records);

}  // namespace sandbox
