#include "checks/AuthorizedRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"
#include "crypto/RandomText.h"
#include "http/JsonText.h"
#include "token/Endpoints.h"

namespace sandbox {
namespace {

constexpr int kLifetimeSeconds = 7200;

// No service of this platform takes an application token, so none is remembered.
PlatformReply IssueToken(const PlatformRequest& request, const PlatformState& state) {
    HeaderInspection(request.head).ExpectAuthorizedFields(kCommandApplicationToken, request.body.size());
    CheckTraceQuery(request);
    CheckNullBody(request);
    AccountOf(request.head.OnlyValue("Authorization"), state);
    return JsonReply(JsonObject({{"accessToken", RandomToken()},
                                 {"expires", kLifetimeSeconds},
                                 {"result", PortalResult(kResultSuccess, "success")}}));
}

}  // namespace

void AddApplicationTokenEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("POST", kPathApplicationToken,
                  PortalEndpoint([&state](const PlatformRequest& request) { return IssueToken(request, state); }));
}

}  // namespace sandbox
