#pragma once

#include <string>

#include "RequestHead.h"

namespace sandbox {

// The authorization of the client's encoded sets: base64 of kind, device id, application id, an empty field and the
// URL-encoded access token, joined by colons.
struct EncodedAuthorization {
    std::string accessToken;  // decoded, not checked against anything
    std::string fault;        // what is wrong with the text; empty when nothing is
};

// Reads the field "Authorization". The device id must be that of the field "x-zv-device-id".
EncodedAuthorization ReadEncodedAuthorization(const RequestHead& head);

}  // namespace sandbox
