#include <algorithm>

#include "checks/AuthorizedRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/FormText.h"
#include "http/JsonText.h"
#include "profile/Endpoints.h"

namespace sandbox {
namespace {

// The token as it stands in the query.
std::string_view EncodedToken(std::string_view query) {
    const auto edges = kGatewayQueryStart.size() + kGatewayQueryEnd.size();
    const auto token =
        query.substr(std::min(kGatewayQueryStart.size(), query.size()), query.size() - std::min(edges, query.size()));
    if (query != std::string(kGatewayQueryStart) + std::string(token) + std::string(kGatewayQueryEnd) ||
        token.find('&') != std::string_view::npos) {
        throw Refusal(Wrong::kQuery,
                      "the query is not access_token, nsp_fmt=JSON, nsp_svc=zorvan.oauth2.user.getTokenInfo "
                      "and open_id=OPENID, in this order");
    }
    return token;
}

PlatformReply TokenInformation(const PlatformRequest& request, const PlatformState& state) {
    HeaderInspection inspection(request.head);
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    const auto token = FormDecoded(EncodedToken(request.query));
    if (!token) {
        throw Refusal(Wrong::kQuery, "access_token is not encoded as a form's value");
    }
    return JsonReply(JsonObject({{"uid", AccountOf(*token, state).userId}}));
}

}  // namespace

void AddGatewayEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("GET", kPathGateway,
                  [&state](const PlatformRequest& request) { return TokenInformation(request, state); });
}

}  // namespace sandbox
