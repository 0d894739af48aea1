#include "profile/RegistrationService.h"

#include "checks/EncodedAuthorization.h"
#include "checks/PortalRequest.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

constexpr const char* kMemberCountry = "registerCountryCode";

PlatformReply RegistrationReply(const Account& account) {
    Json::Value reply(Json::objectValue);
    reply["clientLogReport"] = account.clientLogReport;
    reply["languageType"] = account.languageType;
    reply["privilege"] = account.privilege;
    reply["result"] = PortalResult(kResultSuccess, "success");
    return {200, JsonLine(reply), {}};
}

PlatformReply RegistrationOf(const PlatformRequest& request, const PlatformState& state) {
    const auto body = ParseJsonObject(request.body);
    const auto authorization = ReadEncodedAuthorization(request.head);
    if (auto refusal = RefusalOf({AuthorizedHeaderFault(request, kCommandRegistration, authorization),
                                  TraceQueryFault(request), TracedBodyFault(request, body, kMemberCountry)})) {
        return *std::move(refusal);
    }
    const auto check = state.CheckAccessToken(authorization.accessToken);
    if (!check.account) {
        return TokenRefusal(check.refusal);
    }
    // Empty before a code's exchange told the client its country, as after a legacy sign-in.
    const auto country = body.value[kMemberCountry].asString();
    if (!country.empty() && country != check.account->countryCode) {
        return RefusalOf({"", "", "registerCountryCode is not " + check.account->countryCode}).value();
    }
    return RegistrationReply(*check.account);
}

}  // namespace

void AddRegistrationEndpoint(EndpointTable& endpoints, const PlatformState& state) {
    endpoints.Add("POST", kPathRegistration,
                  [&state](const PlatformRequest& request) { return RegistrationOf(request, state); });
}

}  // namespace sandbox
