#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "http/Exchange.h"
#include "http/JsonText.h"

// What the endpoints of the portal have in common. A fault is the reason why a request is refused, empty when there is
// none.
namespace sandbox {

struct PortalFaults {
    std::string header;
    std::string query;
    std::string body;
};

// {"code", "desc"}, the member "result" of every reply.
Json::Value PortalResult(std::string_view code, const std::string& description);

// The reply to a faulty request, status 400. The header comes first: what is wrong there is named even when query and
// body are wrong too. Nothing when there is no fault.
std::optional<PlatformReply> RefusalOf(const PortalFaults& faults);

// The reply to a request whose access token is not valid, status 401.
PlatformReply TokenRefusal(const std::string& reason);

// The trace id of the header is the only thing in the query.
std::string TraceQueryFault(const PlatformRequest& request);

// The body is one compact line of the string member of that name and the header's trace id, in this order.
std::string TracedBodyFault(const PlatformRequest& request, const ParsedJson& body, const char* member);

// The body is a null value in one line.
std::string NullBodyFault(const PlatformRequest& request);

}  // namespace sandbox
