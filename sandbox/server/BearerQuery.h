#pragma once

#include <functional>
#include <string_view>

#include "EndpointTable.h"
#include "PlatformState.h"

namespace sandbox {

using AccountAnswer = std::function<PlatformReply(const PlatformRequest&, const Account&)>;

// An endpoint for a GET with one fixed query and a bearer token, and nothing else of the client's. 400 when the request
// differs from that, 401 without a valid token; else answer is asked. query and state must outlive the handler.
EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer);

}  // namespace sandbox
