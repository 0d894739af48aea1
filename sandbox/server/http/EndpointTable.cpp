#include "http/EndpointTable.h"

#include <exception>
#include <utility>

#include "http/JsonText.h"

namespace sandbox {

void EndpointTable::Add(std::string_view method, std::string_view path, EndpointHandler handler) {
    m_endpoints[std::string(path)][std::string(method)] = std::move(handler);
}

bool EndpointTable::Knows(const std::string& path) const {
    return m_endpoints.count(path) != 0;
}

PlatformReply EndpointTable::Answer(const PlatformRequest& request) const noexcept {
    try {
        const auto methods = m_endpoints.find(request.path);
        if (methods == m_endpoints.end()) {
            return ErrorReply(404, "there is no endpoint " + request.path);
        }
        const auto handler = methods->second.find(request.method);
        if (handler == methods->second.end()) {
            return ErrorReply(405, request.path + " does not take the method " + request.method);
        }
        return handler->second(request);
    } catch (const Refusal& refusal) {
        return ErrorReply(refusal.Status(), refusal.what());
    } catch (const std::exception& error) {
        return ErrorReply(500, error.what());
    } catch (...) {
        return ErrorReply(500, "unknown exception");
    }
}

PlatformReply JsonReply(const Json::Value& value) {
    return {200, JsonLine(value), {}};
}

PlatformReply ErrorReply(int status, const std::string& reason) {
    PlatformReply reply{status, JsonLine(JsonObject({{"error", reason}})), {}};
    reply.refusal = reason;
    return reply;
}

EndpointHandler WithObject(std::function<PlatformReply(const Json::Value&)> handler) {
    return
        [handler = std::move(handler)](const PlatformRequest& request) { return handler(ParseJsonBody(request.body)); };
}

}  // namespace sandbox
