#include "PortalService.h"

#include "HeaderInspection.h"
#include "JsonText.h"
#include "WireConstants.h"

namespace sandbox {
namespace {

constexpr const char* kMemberCode = "authorizationCode";
constexpr const char* kMemberTraceId = "traceId";

struct Refusal {
    std::string_view resultCode;
    std::string reason;  // empty: the request is good
};

Json::Value Result(std::string_view code, const std::string& description) {
    Json::Value result(Json::objectValue);
    result["code"] = std::string(code);
    result["desc"] = description;
    return result;
}

PlatformReply RefusedRequest(const Refusal& refusal) {
    Json::Value reply(Json::objectValue);
    reply["result"] = Result(refusal.resultCode, refusal.reason);
    return {400, JsonLine(reply), {}};
}

std::string HeaderFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectCommonFields(kCommandCodeExchange);
    inspection.Expect("Authorization", "");
    inspection.Expect("Content-Type", kJsonContentType);
    inspection.Expect("Cookie", kSiteCookie);
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherPlatformFields();
    return inspection.Reason();
}

std::string BodyFault(const PlatformRequest& request, const ParsedJson& body, const std::string& traceId) {
    if (!body.reason.empty()) {
        return "body " + body.reason;
    }
    for (const auto* name : {kMemberCode, kMemberTraceId}) {
        if (!body.value[name].isString()) {
            return std::string(name) + " is not a string of the body";
        }
    }
    if (!IsCompactLine(request.body, body.value, {kMemberCode, kMemberTraceId})) {
        return "body is not one compact line of authorizationCode and traceId, in this order, ending in a line feed";
    }
    return body.value[kMemberTraceId].asString() == traceId ? "" : "traceId of the body differs from the header's";
}

// The header comes first: what is wrong there is named even when query and body are wrong too.
Refusal CheckRequest(const PlatformRequest& request, const ParsedJson& body) {
    if (auto fault = HeaderFault(request); !fault.empty()) {
        return {kResultBadHeader, std::move(fault)};
    }
    const auto traceId = HeaderInspection(request.head).TraceId();
    if (request.query != "traceId=" + traceId) {
        return {kResultBadQuery, "traceId of the query differs from x-zv-trace-id, or the query holds more"};
    }
    return {kResultBadBody, BodyFault(request, body, traceId)};
}

Json::Value GrantedReply(const TokenGrant& grant) {
    Json::Value reply(Json::objectValue);
    reply["accessToken"] = grant.accessToken;
    reply["refreshToken"] = grant.refreshToken;
    reply["registerCountryCode"] = grant.countryCode;
    reply["expires"] = static_cast<Json::Int64>(grant.lifetime.count());
    reply["oauthHttpStatusCode"] = kOauthStatusSuccess;
    reply["oauthSubErrorCode"] = 0;
    reply["result"] = Result(kResultSuccess, "success");
    return reply;
}

// Status 200 on purpose: the portal reports a refused code in the reply only, without tokens and country.
Json::Value RefusedCodeReply(const std::string& reason) {
    Json::Value reply(Json::objectValue);
    reply["oauthHttpStatusCode"] = kOauthStatusRefused;
    reply["oauthSubErrorCode"] = kOauthSubErrorCodeRefused;
    reply["result"] = Result(kResultCodeRefused, reason);
    return reply;
}

PlatformReply ExchangeCode(const PlatformRequest& request, PlatformState& state) {
    const auto body = ParseJsonObject(request.body);
    if (const auto refusal = CheckRequest(request, body); !refusal.reason.empty()) {
        return RefusedRequest(refusal);
    }
    const auto exchange = state.ExchangeCode(body.value[kMemberCode].asString());
    return {200, JsonLine(exchange.grant ? GrantedReply(*exchange.grant) : RefusedCodeReply(exchange.refusal)), {}};
}

}  // namespace

void AddPortalEndpoints(EndpointTable& endpoints, PlatformState& state) {
    endpoints.Add("POST", kPathCodeExchange,
                  [&state](const PlatformRequest& request) { return ExchangeCode(request, state); });
}

}  // namespace sandbox
