#include "Endpoints.h"
#include "checks/AuthorizedRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

// Header fields are not checked.
PlatformReply RemoteEndpoints(const PlatformRequest& request) {
    HeaderInspection(request.head).ExpectNoBody();
    RequireQuery(request, "");
    Json::Value hosts(Json::arrayValue);
    for (const auto* host : {"rtq1.example.com", "rtq2.example.com"}) {
        hosts.append(JsonObject({{"host", host}, {"port", 443}}));
    }
    auto reply = JsonReply(JsonObject({{"region", "CN"}, {"ttlSeconds", 300}, {"endpoints", hosts}}));
    reply.headers = {{"x-zv-region", "CN"}, {"Cache-Control", "max-age=300"}};
    return reply;
}

}  // namespace

void AddRoutingEndpoints(EndpointTable& endpoints) {
    endpoints.Add("GET", kPathRouting, RemoteEndpoints);
}

}  // namespace sandbox
