#pragma once

#include <string>
#include <string_view>

#include <json/value.h>

#include "http/EndpointTable.h"

// What the endpoints of the portal have in common.
namespace sandbox {

// {"code", "desc"}, the member "result" of every reply.
Json::Value PortalResult(std::string_view code, const std::string& description);

// An endpoint that reports a Refusal of answer as the portal does: with a result, whose code says what is wrong. answer
// looks at the header first, so that what is wrong there is named even when query and body are wrong too.
EndpointHandler PortalEndpoint(EndpointHandler answer);

// These throw Refusal.
// The trace id of the header is the only thing in the query.
void CheckTraceQuery(const PlatformRequest& request);
// The body is one compact line of the string member of that name, which is returned, and the header's trace id, in this
// order.
std::string TracedMember(const PlatformRequest& request, const char* member);
// The body is a null value in one line.
void CheckNullBody(const PlatformRequest& request);

}  // namespace sandbox
