#include "token/CodeExchangeService.h"

#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

constexpr const char* kMemberCode = "authorizationCode";

std::string HeaderFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectCommonFields(kCommandCodeExchange);
    inspection.Expect("Authorization", "");
    inspection.Expect("Content-Type", kJsonContentType);
    inspection.Expect("Cookie", kSiteCookie);
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherFields();
    return inspection.Reason();
}

Json::Value GrantedReply(const TokenGrant& grant) {
    Json::Value reply(Json::objectValue);
    reply["accessToken"] = grant.accessToken;
    reply["refreshToken"] = grant.refreshToken;
    reply["registerCountryCode"] = grant.countryCode;
    reply["expires"] = static_cast<Json::Int64>(grant.lifetime.count());
    reply["oauthHttpStatusCode"] = kOauthStatusSuccess;
    reply["oauthSubErrorCode"] = 0;
    reply["result"] = PortalResult(kResultSuccess, "success");
    return reply;
}

// Status 200 on purpose: the portal reports a refused code in the reply only, without tokens and country.
Json::Value RefusedCodeReply(const std::string& reason) {
    Json::Value reply(Json::objectValue);
    reply["oauthHttpStatusCode"] = kOauthStatusRefused;
    reply["oauthSubErrorCode"] = kOauthSubErrorCodeRefused;
    reply["result"] = PortalResult(kResultCodeRefused, reason);
    return reply;
}

PlatformReply ExchangeCode(const PlatformRequest& request, PlatformState& state) {
    const auto body = ParseJsonObject(request.body);
    if (auto refusal =
            RefusalOf({HeaderFault(request), TraceQueryFault(request), TracedBodyFault(request, body, kMemberCode)})) {
        return *std::move(refusal);
    }
    const auto exchange =
        state.ExchangeCode(body.value[kMemberCode].asString(), request.head.OnlyValue("x-zv-device-id"));
    return {200, JsonLine(exchange.grant ? GrantedReply(*exchange.grant) : RefusedCodeReply(exchange.refusal)), {}};
}

}  // namespace

void AddPortalEndpoints(EndpointTable& endpoints, PlatformState& state) {
    endpoints.Add("POST", kPathCodeExchange,
                  [&state](const PlatformRequest& request) { return ExchangeCode(request, state); });
}

}  // namespace sandbox
