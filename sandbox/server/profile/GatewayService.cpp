#include "profile/GatewayService.h"

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/FormText.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

// The token as it stands in the query; nothing when the query is another one.
std::optional<std::string_view> EncodedToken(std::string_view query) {
    if (query.size() < kGatewayQueryStart.size() + kGatewayQueryEnd.size() ||
        query.substr(0, kGatewayQueryStart.size()) != kGatewayQueryStart ||
        query.substr(query.size() - kGatewayQueryEnd.size()) != kGatewayQueryEnd) {
        return std::nullopt;
    }
    query.remove_prefix(kGatewayQueryStart.size());
    query.remove_suffix(kGatewayQueryEnd.size());
    return query.find('&') == std::string_view::npos ? std::optional(query) : std::nullopt;
}

std::string HeaderFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    return inspection.Reason();
}

PlatformReply TokenInformation(const PlatformRequest& request, const PlatformState& state) {
    if (const auto fault = HeaderFault(request); !fault.empty()) {
        return ErrorReply(400, fault);
    }
    const auto encoded = EncodedToken(request.query);
    if (!encoded) {
        return ErrorReply(400,
                          "the query is not access_token, nsp_fmt=JSON, nsp_svc=zorvan.oauth2.user.getTokenInfo "
                          "and open_id=OPENID, in this order");
    }
    const auto token = FormDecoded(*encoded);
    if (!token) {
        return ErrorReply(400, "access_token is not encoded as a form's value");
    }
    const auto check = state.CheckAccessToken(*token);
    if (!check.account) {
        return ErrorReply(401, check.refusal);
    }
    Json::Value reply(Json::objectValue);
    reply["uid"] = check.account->userId;
    return {200, JsonLine(reply), {}};
}

}  // namespace

void AddGatewayEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("GET", kPathGateway,
                  [&state](const PlatformRequest& request) { return TokenInformation(request, state); });
}

}  // namespace sandbox
