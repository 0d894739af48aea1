#pragma once

#include <string>
#include <string_view>

#include <json/value.h>

#include "http/EndpointTable.h"

// What the endpoints of the portal have in common.
namespace sandbox {

// {"code", "desc"}, the member "result" of every reply.
Json::Value PortalResult(std::string_view code, const std::string& description);

// An endpoint that calls answer and reports its Refusal as the portal does: in a result, whose code says what is wrong.
// answer checks header, query and body in this order: the portal names the first fault only.
EndpointHandler PortalEndpoint(EndpointHandler answer);

// The following throw Refusal when the request is not like this:
// The query is the header's trace id and nothing else.
void CheckTraceQuery(const PlatformRequest& request);
// The body is one compact line of two members, in this order: the text of that name, which is returned, and the trace
// id of the header.
std::string TracedMember(const PlatformRequest& request, const char* member);
// The body is a null value in one line.
void CheckNullBody(const PlatformRequest& request);

}  // namespace sandbox
