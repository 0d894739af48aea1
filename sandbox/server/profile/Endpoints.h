#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

// Who an account is. state must outlive the table.
namespace sandbox {

// The gateway: the user id that an access token stands for.
void AddGatewayEndpoint(EndpointTable& endpoints, const PlatformState& state);
// An account's profile, and the user id of its drive's owner, which is the sync server's.
void AddUserInformationEndpoints(EndpointTable& endpoints, const PlatformState& state);
// What follows for an account from where it was registered.
void AddRegistrationEndpoint(EndpointTable& endpoints, const PlatformState& state);
// The host of the accounts' photos, open to everybody: one endpoint a photo.
void AddPhotoEndpoints(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
