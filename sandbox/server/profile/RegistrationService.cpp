#include "checks/AuthorizedRequest.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "profile/Endpoints.h"

namespace sandbox {
namespace {

PlatformReply Registration(const PlatformRequest& request, const PlatformState& state) {
    const auto accessToken = EncodedAccessToken(request, kCommandRegistration);
    CheckTraceQuery(request);
    const auto country = TracedMember(request, "registerCountryCode");
    const auto account = AccountOf(accessToken, state);
    // Empty before the client knows its country: it learns that in exchange for an authorization code only.
    if (!country.empty() && country != account.countryCode) {
        throw Refusal(Wrong::kBody, "registerCountryCode is neither empty nor " + account.countryCode);
    }
    return JsonReply(JsonObject({{"clientLogReport", account.clientLogReport},
                                 {"languageType", account.languageType},
                                 {"privilege", account.privilege},
                                 {"result", PortalResult(kResultSuccess, "success")}}));
}

}  // namespace

void AddRegistrationEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("POST", kPathRegistration,
                  PortalEndpoint([&state](const PlatformRequest& request) { return Registration(request, state); }));
}

}  // namespace sandbox
