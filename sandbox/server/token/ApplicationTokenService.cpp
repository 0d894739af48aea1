#include "token/ApplicationTokenService.h"

#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"
#include "crypto/RandomText.h"

namespace sandbox {
namespace {

constexpr int kLifetimeSeconds = 7200;

std::string HeaderFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectAuthorizedFields(kCommandApplicationToken, request.body.size());
    return inspection.Reason();
}

// Nobody of this platform takes an application token, so none is remembered.
PlatformReply IssueToken(const PlatformRequest& request, const PlatformState& state) {
    if (auto refusal = RefusalOf({HeaderFault(request), TraceQueryFault(request), NullBodyFault(request)})) {
        return *std::move(refusal);
    }
    const auto check = state.CheckAccessToken(request.head.OnlyValue("Authorization"));
    if (!check.account) {
        return TokenRefusal(check.refusal);
    }
    Json::Value reply(Json::objectValue);
    reply["accessToken"] = RandomToken();
    reply["expires"] = kLifetimeSeconds;
    reply["result"] = PortalResult(kResultSuccess, "success");
    return {200, JsonLine(reply), {}};
}

}  // namespace

void AddApplicationTokenEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("POST", kPathApplicationToken,
                  [&state](const PlatformRequest& request) { return IssueToken(request, state); });
}

}  // namespace sandbox
