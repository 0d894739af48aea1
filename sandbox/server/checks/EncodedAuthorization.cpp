#include "checks/EncodedAuthorization.h"

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "crypto/Base64.h"
#include "http/FormText.h"

namespace sandbox {

std::string EncodedAccessToken(const PlatformRequest& request, unsigned traceCommand) {
    const auto& head = request.head;
    HeaderInspection(head).ExpectAuthorizedFields(traceCommand, request.body.size());
    const auto text = Base64Decoded(head.OnlyValue("Authorization"));
    if (!text) {
        throw Refusal(Wrong::kHeader, "Authorization is not base64");
    }
    const auto start = std::string(kAuthorizationKind) + ":" + head.OnlyValue("x-zv-device-id") + ":" +
                       std::string(kApplicationId) + "::";
    if (text->compare(0, start.size(), start) != 0) {
        throw Refusal(Wrong::kHeader, "Authorization does not decode to a text that begins with " + start);
    }
    const auto token = FormDecoded(std::string_view(*text).substr(start.size()));
    if (!token) {
        throw Refusal(Wrong::kHeader, "Authorization holds an access token that is not encoded as a form's value");
    }
    return *token;
}

}  // namespace sandbox
