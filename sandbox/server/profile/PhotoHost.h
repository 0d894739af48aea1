#pragma once

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The host of the accounts' photos, open to everybody: one endpoint a photo.
void AddPhotoEndpoints(EndpointTable& endpoints, const PlatformState& state);

}  // namespace sandbox
