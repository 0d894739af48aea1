#include "checks/BasicServiceRequest.h"

#include <utility>

#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

constexpr std::string_view kHeaderUserId = "userId";

std::string RequestFault(const PlatformRequest& request, ExtraField extra) {
    HeaderInspection inspection(request.head);
    inspection.ExpectPresent(kHeaderUserId);
    inspection.Expect("appId", kApplicationId);
    inspection.Allow("Authorization");
    inspection.Expect("Content-Type", kJsonContentType);
    if (extra == ExtraField::kActiveMethod) {
        inspection.Expect("x-zv-active-method", kManualActivation);
    }
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherFields();
    if (!inspection.Reason().empty()) {
        return inspection.Reason();
    }
    return request.query.empty() ? "" : "the query is not empty";
}

// Empty before the client knows who signed in.
bool IsUserIdOf(const Account& account, const RequestHead& head) {
    const auto userId = head.OnlyValue(kHeaderUserId);
    return userId.empty() || userId == account.userId;
}

}  // namespace

EndpointHandler BasicServicePost(ExtraField extra, const PlatformState& state, AccountAnswer answer) {
    return [extra, &state, answer = std::move(answer)](const PlatformRequest& request) {
        if (const auto fault = RequestFault(request, extra); !fault.empty()) {
            return ErrorReply(400, fault);
        }
        const auto check = CheckBearer(request.head, state);
        if (!check.account) {
            return ErrorReply(401, check.refusal);
        }
        return IsUserIdOf(*check.account, request.head)
                   ? answer(request, *check.account)
                   : ErrorReply(400, "userId is not that of the access token's account");
    };
}

}  // namespace sandbox
