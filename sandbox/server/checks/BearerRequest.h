#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

// Requests whose access token says which account they are for. All of these throw Refusal, or are endpoints that do.
namespace sandbox {

// The account that the access token was issued to.
Account AccountOf(const std::string& accessToken, const PlatformState& state);
// The same for the bearer token in the field Authorization.
Account BearerAccount(const RequestHead& head, const PlatformState& state);

// Refuses any other query; an empty text stands for no query.
void RequireQuery(const PlatformRequest& request, std::string_view query);

// What an endpoint answers once it is known whose account is meant.
using AccountAnswer = std::function<PlatformReply(const PlatformRequest&, const Account&)>;

// An endpoint for a GET with one fixed query and a bearer token, and nothing else of the client's. query and state must
// outlive the handler.
EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer);

// What a request to the basic service carries beside the standard header set.
enum class ExtraField { kNone, kActiveMethod };

// An endpoint for a POST with the standard header set of the suite's HTTP library (user id or empty, application id,
// bearer token, JSON), the extra field, and nothing else of the client's. answer judges the body. state must outlive
// the handler.
EndpointHandler BasicServicePost(ExtraField extra, const PlatformState& state, AccountAnswer answer);

}  // namespace sandbox
