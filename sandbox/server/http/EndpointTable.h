#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "http/Exchange.h"

namespace sandbox {

using EndpointHandler = std::function<PlatformReply(const PlatformRequest&)>;

// The endpoints of all services by path and method. Filled before the listeners start, read-only afterwards.
class EndpointTable {
public:
    void Add(std::string_view method, std::string_view path, EndpointHandler handler);
    bool Knows(const std::string& path) const;
    // Runs the endpoint. 404 or 405 when there is none, 500 when it throws; never throws itself.
    PlatformReply Answer(const PlatformRequest& request) const noexcept;

private:
    std::map<std::string, std::map<std::string, EndpointHandler>> m_endpoints;  // by path, then by method
};

// {"error": reason} with that status.
PlatformReply ErrorReply(int status, const std::string& reason);

}  // namespace sandbox
