#pragma once

#include <functional>
#include <string_view>

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The account of the access token in the field Authorization, or why there is none.
TokenCheck CheckBearer(const RequestHead& head, const PlatformState& state);

using AccountAnswer = std::function<PlatformReply(const PlatformRequest&, const Account&)>;

// An endpoint for a GET with one fixed query and a bearer token, and nothing else of the client's. 400 when the request
// differs from that, 401 without a valid token; else answer is asked. query and state must outlive the handler.
EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer);

}  // namespace sandbox
