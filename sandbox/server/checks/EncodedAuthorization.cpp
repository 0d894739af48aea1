#include "checks/EncodedAuthorization.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "crypto/Base64.h"
#include "http/FormText.h"

namespace sandbox {
namespace {

// Everything up to the access token.
std::string ExpectedStart(const std::string& device) {
    std::string start(kAuthorizationKind);
    start += ":" + device + ":";
    start += kApplicationId;
    return start + "::";
}

}  // namespace

EncodedAuthorization ReadEncodedAuthorization(const RequestHead& head) {
    const auto text = Base64Decoded(head.OnlyValue("Authorization"));
    if (!text) {
        return {{}, "is not base64"};
    }
    // A client that has not initialised the account SDK names no device here.
    const auto known = ExpectedStart(head.OnlyValue("x-zv-device-id"));
    const auto start = text->compare(0, known.size(), known) == 0 ? known : ExpectedStart("");
    if (text->compare(0, start.size(), start) != 0) {
        return {{}, "does not decode to a text that begins with " + known};
    }
    auto token = FormDecoded(std::string_view(*text).substr(start.size()));
    if (!token) {
        return {{}, "holds an access token that is not encoded as a form's value"};
    }
    return {*std::move(token), {}};
}

std::string AuthorizedHeaderFault(const PlatformRequest& request, unsigned traceCommand,
                                  const EncodedAuthorization& authorization) {
    HeaderInspection inspection(request.head);
    inspection.ExpectAuthorizedFields(traceCommand, request.body.size());
    return !inspection.Reason().empty() || authorization.fault.empty() ? inspection.Reason()
                                                                       : "Authorization " + authorization.fault;
}

}  // namespace sandbox
