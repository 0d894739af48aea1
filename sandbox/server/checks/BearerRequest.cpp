#include "checks/BearerRequest.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"

namespace sandbox {

Account AccountOf(const std::string& accessToken, const PlatformState& state) {
    auto check = state.CheckAccessToken(accessToken);
    if (!check.account) {
        throw Refusal(Wrong::kAccessToken, check.refusal);
    }
    return *std::move(check.account);
}

Account BearerAccount(const RequestHead& head, const PlatformState& state) {
    const auto value = head.OnlyValue("Authorization");
    if (value.compare(0, kBearerPrefix.size(), kBearerPrefix) != 0) {
        throw Refusal(Wrong::kAccessToken, "Authorization is not one bearer token");
    }
    return AccountOf(value.substr(kBearerPrefix.size()), state);
}

void RequireQuery(const PlatformRequest& request, std::string_view query) {
    if (request.query != query) {
        throw Refusal(Wrong::kQuery,
                      query.empty() ? "the query is not empty" : "the query is not " + std::string(query));
    }
}

EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer) {
    return [query, &state, answer = std::move(answer)](const PlatformRequest& request) {
        HeaderInspection inspection(request.head);
        inspection.Allow("Authorization");
        inspection.ExpectNoBody();
        inspection.RefuseOtherFields();
        RequireQuery(request, query);
        return answer(request, BearerAccount(request.head, state));
    };
}

EndpointHandler BasicServicePost(ExtraField extra, const PlatformState& state, AccountAnswer answer) {
    return [extra, &state, answer = std::move(answer)](const PlatformRequest& request) {
        HeaderInspection inspection(request.head);
        const auto userId = inspection.ExpectPresent("userId");
        inspection.Expect("appId", kApplicationId);
        inspection.Allow("Authorization");
        inspection.Expect("Content-Type", kJsonContentType);
        if (extra == ExtraField::kActiveMethod) {
            inspection.Expect("x-zv-active-method", kManualActivation);
        }
        inspection.ExpectContentLength(request.body.size());
        inspection.RefuseOtherFields();
        RequireQuery(request, "");
        const auto account = BearerAccount(request.head, state);
        // Empty before the client knows who signed in.
        if (!userId.empty() && userId != account.userId) {
            throw Refusal(Wrong::kHeader, "userId is not that of the access token's account");
        }
        return answer(request, account);
    };
}

}  // namespace sandbox
