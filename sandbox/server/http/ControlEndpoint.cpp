#include "http/ControlEndpoint.h"

#include <utility>

#include "http/JsonText.h"

namespace sandbox {

PlatformReply JsonReply(const Json::Value& value) {
    return {200, JsonLine(value), {}};
}

EndpointHandler WithObject(std::function<PlatformReply(const Json::Value&)> handler) {
    return [handler = std::move(handler)](const PlatformRequest& request) {
        const auto body = ParseJsonObject(request.body);
        return body.reason.empty() ? handler(body.value) : ErrorReply(400, "body " + body.reason);
    };
}

}  // namespace sandbox
