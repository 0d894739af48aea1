#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "http/EndpointTable.h"
#include "state/PlatformState.h"

// Requests whose access token says which account they are for. These functions, and the endpoints that they make, throw
// Refusal.
namespace sandbox {

// The account that the access token was issued to.
Account AccountOf(const std::string& accessToken, const PlatformState& state);
// The same for the bearer token in the field Authorization.
Account BearerAccount(const RequestHead& head, const PlatformState& state);

// Checks the header of a request that has an encoded authorization, a JSON body and a trace id of that command. Returns
// the access token, which is not checked. The encoded authorization is base64 of kind, device id, application id, an
// empty field and the URL-encoded access token, joined by colons. Throws Refusal.
std::string EncodedAccessToken(const PlatformRequest& request, unsigned traceCommand);

// Refuses any other query; an empty text stands for no query.
void RequireQuery(const PlatformRequest& request, std::string_view query);

// What an endpoint answers once it is known whose account is meant.
using AccountAnswer = std::function<PlatformReply(const PlatformRequest&, const Account&)>;

// An endpoint for a GET with one fixed query and a bearer token. The client may add no other header field. query and
// state must outlive the handler.
EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer);

// What a request to the basic service carries beside the standard header set.
enum class ExtraField { kNone, kActiveMethod };

// An endpoint for a POST with the standard header set of the suite's HTTP library (user id or empty, application id,
// bearer token, JSON) and the extra field. The client may add no other header field. answer checks the body. state must
// outlive the handler.
EndpointHandler BasicServicePost(ExtraField extra, const PlatformState& state, AccountAnswer answer);

}  // namespace sandbox
