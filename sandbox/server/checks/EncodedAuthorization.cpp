#include "checks/EncodedAuthorization.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "crypto/Base64.h"
#include "http/FormText.h"

namespace sandbox {
namespace {

// Everything up to the access token.
std::string ExpectedStart(const RequestHead& head) {
    std::string start(kAuthorizationKind);
    start += ":" + head.OnlyValue("x-zv-device-id") + ":";
    start += kApplicationId;
    return start + "::";
}

}  // namespace

EncodedAuthorization ReadEncodedAuthorization(const RequestHead& head) {
    const auto text = Base64Decoded(head.OnlyValue("Authorization"));
    if (!text) {
        return {{}, "is not base64"};
    }
    const auto start = ExpectedStart(head);
    if (text->compare(0, start.size(), start) != 0) {
        return {{}, "does not decode to a text that begins with " + start};
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
