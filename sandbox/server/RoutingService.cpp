#include "RoutingService.h"

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

// Any header fields will do.
std::string RequestFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectNoBody();
    return request.query.empty() ? inspection.Reason() : "the query is not empty";
}

PlatformReply RemoteEndpoints(const PlatformRequest& request) {
    if (const auto fault = RequestFault(request); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    Json::Value reply(Json::objectValue);
    reply["region"] = "CN";
    reply["ttlSeconds"] = 300;
    for (const auto* host : {"rtq1.example.com", "rtq2.example.com"}) {
        Json::Value endpoint(Json::objectValue);
        endpoint["host"] = host;
        endpoint["port"] = 443;
        reply["endpoints"].append(endpoint);
    }
    return {200, JsonLine(reply), {{"x-zv-region", "CN"}, {"Cache-Control", "max-age=300"}}};
}

}  // namespace

void AddRoutingEndpoints(EndpointTable& endpoints) {
    endpoints.Add("GET", kPathRouting, RemoteEndpoints);
}

}  // namespace sandbox
