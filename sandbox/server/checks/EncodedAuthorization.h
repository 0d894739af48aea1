#pragma once

#include <string>

#include "http/Exchange.h"

namespace sandbox {

// The authorization of the client's encoded sets: base64 of kind, device id, application id, an empty field and the
// URL-encoded access token, joined by colons.
struct EncodedAuthorization {
    std::string accessToken;  // decoded, not checked against anything
    std::string fault;        // what is wrong with the text; empty when nothing is
};

// Reads the field "Authorization". The device id must be that of the field "x-zv-device-id".
EncodedAuthorization ReadEncodedAuthorization(const RequestHead& head);

// What is wrong with the fields of a request that carries such an authorization, a JSON body and a trace id of that
// command; empty when nothing is. Of authorization only the fault counts.
std::string AuthorizedHeaderFault(const PlatformRequest& request, unsigned traceCommand,
                                  const EncodedAuthorization& authorization);

}  // namespace sandbox
