#include "checks/PortalRequest.h"

#include <algorithm>
#include <utility>

#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr const char* kMemberTraceId = "traceId";
constexpr std::string_view kHeaderTraceId = "x-zv-trace-id";

std::string_view CodeOf(Wrong part) {
    switch (part) {
        case Wrong::kHeader:
            return kResultBadHeader;
        case Wrong::kQuery:
            return kResultBadQuery;
        case Wrong::kBody:
            return kResultBadBody;
        default:
            return kResultBadToken;
    }
}

// A member as it is written in text, from which object was parsed: it may be escaped in any way that JSON allows.
std::string Written(const Json::Value& object, const char* name, const std::string& text) {
    const auto start = static_cast<std::size_t>(object[name].getOffsetStart());
    const auto end = static_cast<std::size_t>(object[name].getOffsetLimit());
    return "\"" + std::string(name) + "\":" + text.substr(std::min(start, text.size()), end - start);
}

}  // namespace

Json::Value PortalResult(std::string_view code, const std::string& description) {
    return JsonObject({{"code", std::string(code)}, {"desc", description}});
}

EndpointHandler PortalEndpoint(EndpointHandler answer) {
    return [answer = std::move(answer)](const PlatformRequest& request) {
        try {
            return answer(request);
        } catch (const Refusal& refusal) {
            auto reply = JsonReply(JsonObject({{"result", PortalResult(CodeOf(refusal.Part()), refusal.what())}}));
            reply.status = refusal.Status();
            reply.refusal = refusal.what();
            return reply;
        }
    };
}

void CheckTraceQuery(const PlatformRequest& request) {
    if (request.query != "traceId=" + request.head.OnlyValue(kHeaderTraceId)) {
        throw Refusal(Wrong::kQuery, "traceId of the query differs from x-zv-trace-id, or the query holds more");
    }
}

std::string TracedMember(const PlatformRequest& request, const char* member) {
    const auto body = ParseJsonBody(request.body);
    for (const auto* name : {member, kMemberTraceId}) {
        if (!body[name].isString()) {
            throw Refusal(Wrong::kBody, std::string(name) + " is not a string of the body");
        }
    }
    if (request.body !=
        "{" + Written(body, member, request.body) + "," + Written(body, kMemberTraceId, request.body) + "}\n") {
        throw Refusal(Wrong::kBody, std::string("body is not one compact line of ") + member +
                                        " and traceId, in this order, ending in a line feed");
    }
    if (body[kMemberTraceId] != request.head.OnlyValue(kHeaderTraceId)) {
        throw Refusal(Wrong::kBody, "traceId of the body differs from the header's");
    }
    return body[member].asString();
}

void CheckNullBody(const PlatformRequest& request) {
    if (request.body != kNullBody) {
        throw Refusal(Wrong::kBody, "body is not null in one line that ends in a line feed");
    }
}

}  // namespace sandbox
