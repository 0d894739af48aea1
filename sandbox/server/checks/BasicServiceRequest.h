#pragma once

#include "checks/BearerRequest.h"
#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// What a request to the basic service carries beside the standard header set.
enum class ExtraField { kNone, kActiveMethod };

// An endpoint for a POST with the standard header set of the suite's HTTP library (user id or empty, application id,
// bearer token, JSON), the extra field, and nothing else of the client's. 401 without a valid token, 400 when anything
// else differs; otherwise answer is asked, who judges the body. state must outlive the handler.
EndpointHandler BasicServicePost(ExtraField extra, const PlatformState& state, AccountAnswer answer);

}  // namespace sandbox
