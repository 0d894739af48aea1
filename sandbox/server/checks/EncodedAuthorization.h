#pragma once

#include <string>

#include "http/Exchange.h"

namespace sandbox {

// Checks the fields of a request that carries an encoded authorization, a JSON body and a trace id of that command, and
// returns the access token, which is not checked. The encoded authorization is base64 of kind, device id, application
// id, an empty field and the URL-encoded access token, joined by colons. Throws Refusal.
std::string EncodedAccessToken(const PlatformRequest& request, unsigned traceCommand);

}  // namespace sandbox
