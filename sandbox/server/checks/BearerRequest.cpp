#include "checks/BearerRequest.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

std::string RequestFault(const PlatformRequest& request, std::string_view query) {
    HeaderInspection inspection(request.head);
    inspection.Allow("Authorization");
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    if (!inspection.Reason().empty()) {
        return inspection.Reason();
    }
    return request.query == query ? "" : "the query is not " + std::string(query);
}

}  // namespace

TokenCheck CheckBearer(const RequestHead& head, const PlatformState& state) {
    const auto value = head.OnlyValue("Authorization");
    if (value.compare(0, kBearerPrefix.size(), kBearerPrefix) != 0) {
        return {std::nullopt, "Authorization is not one bearer token"};
    }
    return state.CheckAccessToken(value.substr(kBearerPrefix.size()));
}

EndpointHandler BearerQuery(std::string_view query, const PlatformState& state, AccountAnswer answer) {
    return [query, &state, answer = std::move(answer)](const PlatformRequest& request) {
        if (const auto fault = RequestFault(request, query); !fault.empty()) {
            return ErrorReply(400, fault);
        }
        const auto check = CheckBearer(request.head, state);
        return check.account ? answer(request, *check.account) : ErrorReply(401, check.refusal);
    };
}

}  // namespace sandbox
