#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include <json/value.h>

#include "http/Exchange.h"

namespace sandbox {

using EndpointHandler = std::function<PlatformReply(const PlatformRequest&)>;

// The endpoints of all services by path and method. Filled before the listeners start, read-only afterwards.
class EndpointTable {
public:
    void Add(std::string_view method, std::string_view path, EndpointHandler handler);
    bool Knows(const std::string& path) const;
    // Runs the endpoint. 404 or 405 when there is none, the Refusal's status when it throws one, 500 when it throws
    // anything else; never throws itself.
    PlatformReply Answer(const PlatformRequest& request) const noexcept;

private:
    std::map<std::string, std::map<std::string, EndpointHandler>> m_endpoints;  // by path, then by method
};

// value with status 200.
PlatformReply JsonReply(const Json::Value& value);

// {"error": reason} with that status.
PlatformReply ErrorReply(int status, const std::string& reason);

// An endpoint whose body is a JSON object; anything else is refused before handler runs.
EndpointHandler WithObject(std::function<PlatformReply(const Json::Value&)> handler);

}  // namespace sandbox
