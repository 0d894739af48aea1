#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "token/Endpoints.h"

namespace sandbox {
namespace {

void CheckHeader(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectCommonFields(kCommandCodeExchange);
    inspection.Expect("Authorization", "");
    inspection.Expect("Content-Type", kJsonContentType);
    inspection.Expect("Cookie", kSiteCookie);
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherFields();
}

Json::Value GrantedReply(const TokenGrant& grant) {
    return JsonObject({{"accessToken", grant.accessToken},
                       {"refreshToken", grant.refreshToken},
                       {"registerCountryCode", grant.countryCode},
                       {"expires", static_cast<Json::Int64>(grant.lifetime.count())},
                       {"oauthHttpStatusCode", kOauthStatusSuccess},
                       {"oauthSubErrorCode", 0},
                       {"result", PortalResult(kResultSuccess, "success")}});
}

// The portal answers a refused code with status 200 as well. Only the reply tells, by having no tokens and no country.
Json::Value RefusedCodeReply(const std::string& reason) {
    return JsonObject({{"oauthHttpStatusCode", kOauthStatusRefused},
                       {"oauthSubErrorCode", kOauthSubErrorCodeRefused},
                       {"result", PortalResult(kResultCodeRefused, reason)}});
}

PlatformReply ExchangeCode(const PlatformRequest& request, PlatformState& state) {
    CheckHeader(request);
    CheckTraceQuery(request);
    const auto code = TracedMember(request, "authorizationCode");
    const auto exchange = state.ExchangeCode(code, request.head.OnlyValue("x-zv-device-id"));
    auto reply = JsonReply(exchange.grant ? GrantedReply(*exchange.grant) : RefusedCodeReply(exchange.refusal));
    reply.refusal = exchange.refusal;
    return reply;
}

}  // namespace

void AddCodeExchangeEndpoint(EndpointTable& endpoints, PlatformState& state) {
    endpoints.Add("POST", kPathCodeExchange,
                  PortalEndpoint([&state](const PlatformRequest& request) { return ExchangeCode(request, state); }));
}

}  // namespace sandbox
