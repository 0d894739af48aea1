#include "checks/AuthorizedRequest.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "crypto/Base64.h"
#include "http/FormText.h"

namespace sandbox {
namespace {

// An encoded authorization up to the access token.
std::string StartFor(const std::string& device) {
    return std::string(kAuthorizationKind) + ":" + device + ":" + std::string(kApplicationId) + "::";
}

}  // namespace

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

std::string EncodedAccessToken(const PlatformRequest& request, unsigned traceCommand) {
    const auto& head = request.head;
    HeaderInspection(head).ExpectAuthorizedFields(traceCommand, request.body.size());
    const auto text = Base64Decoded(head.OnlyValue("Authorization"));
    if (!text) {
        throw Refusal(Wrong::kHeader, "Authorization is not base64");
    }
    const auto known = StartFor(head.OnlyValue("x-zv-device-id"));
    // A client that has not initialised the account SDK names no device here.
    const auto start = text->compare(0, known.size(), known) == 0 ? known : StartFor("");
    if (text->compare(0, start.size(), start) != 0) {
        throw Refusal(Wrong::kHeader, "Authorization does not decode to a text that begins with " + known);
    }
    const auto token = FormDecoded(std::string_view(*text).substr(start.size()));
    if (!token) {
        throw Refusal(Wrong::kHeader, "Authorization holds an access token that is not encoded as a form's value");
    }
    return *token;
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
