#include "checks/PortalRequest.h"

#include "checks/WireConstants.h"

namespace sandbox {
namespace {

constexpr const char* kMemberTraceId = "traceId";
constexpr std::string_view kHeaderTraceId = "x-zv-trace-id";

PlatformReply ResultReply(int status, std::string_view code, const std::string& description) {
    Json::Value reply(Json::objectValue);
    reply["result"] = PortalResult(code, description);
    return {status, JsonLine(reply), {}};
}

}  // namespace

Json::Value PortalResult(std::string_view code, const std::string& description) {
    Json::Value result(Json::objectValue);
    result["code"] = std::string(code);
    result["desc"] = description;
    return result;
}

std::optional<PlatformReply> RefusalOf(const PortalFaults& faults) {
    if (!faults.header.empty()) {
        return ResultReply(400, kResultBadHeader, faults.header);
    }
    if (!faults.query.empty()) {
        return ResultReply(400, kResultBadQuery, faults.query);
    }
    if (!faults.body.empty()) {
        return ResultReply(400, kResultBadBody, faults.body);
    }
    return std::nullopt;
}

PlatformReply TokenRefusal(const std::string& reason) {
    return ResultReply(401, kResultBadToken, reason);
}

std::string TraceQueryFault(const PlatformRequest& request) {
    return request.query == "traceId=" + request.head.OnlyValue(kHeaderTraceId)
               ? ""
               : "traceId of the query differs from x-zv-trace-id, or the query holds more";
}

std::string TracedBodyFault(const PlatformRequest& request, const ParsedJson& body, const char* member) {
    if (!body.reason.empty()) {
        return "body " + body.reason;
    }
    for (const auto* name : {member, kMemberTraceId}) {
        if (!body.value[name].isString()) {
            return std::string(name) + " is not a string of the body";
        }
    }
    if (!IsCompactLine(request.body, body.value, {member, kMemberTraceId})) {
        return std::string("body is not one compact line of ") + member +
               " and traceId, in this order, ending in a line feed";
    }
    return body.value[kMemberTraceId].asString() == request.head.OnlyValue(kHeaderTraceId)
               ? ""
               : "traceId of the body differs from the header's";
}

std::string NullBodyFault(const PlatformRequest& request) {
    return request.body == kNullBody ? "" : "body is not null in one line that ends in a line feed";
}

}  // namespace sandbox
