#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

// The portal. state must outlive the table.
namespace sandbox {

// Tokens for an authorization code.
void AddCodeExchangeEndpoint(EndpointTable& endpoints, PlatformState& state);
// A new access token for a refresh token.
void AddRefreshEndpoint(EndpointTable& endpoints, PlatformState& state);
// Tokens of the client application itself.
void AddApplicationTokenEndpoint(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
