#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/TraceId.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "token/Endpoints.h"

namespace sandbox {
namespace {

// The client may add no other field.
void CheckHeader(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectPresent("refreshToken");
    inspection.ExpectDeviceId("deviceId");
    inspection.ExpectPresent("userId");
    inspection.Expect("Cookie", kSiteCookie);
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherFields();
}

// No header carries the trace id here.
void CheckQuery(const std::string& query) {
    constexpr std::string_view kStart = "traceId=";
    if (query.compare(0, kStart.size(), kStart) != 0) {
        throw Refusal(Wrong::kQuery, "the query does not begin with traceId=");
    }
    const auto fault = TraceIdFault(std::string_view(query).substr(kStart.size()), kCommandRefresh, UnixTime());
    if (!fault.empty()) {
        throw Refusal(Wrong::kQuery, "traceId " + fault);
    }
}

PlatformReply Refresh(const PlatformRequest& request, PlatformState& state) {
    CheckHeader(request);
    CheckQuery(request.query);
    CheckNullBody(request);
    const auto& head = request.head;
    const auto exchange =
        state.Refresh(head.OnlyValue("refreshToken"), {head.OnlyValue("deviceId"), head.OnlyValue("userId")});
    if (exchange.wrongClaim != nullptr) {
        throw Refusal(Wrong::kHeader, exchange.wrongClaim + (": " + exchange.refusal));
    }
    // The portal answers a refused token with status 200 as well. Its reply only lacks the new token.
    auto reply = JsonReply(
        exchange.accessToken
            ? JsonObject({{"token", *exchange.accessToken}, {"result", PortalResult(kResultSuccess, "success")}})
            : JsonObject({{"result", PortalResult(kResultRefreshRefused, exchange.refusal)}}));
    reply.refusal = exchange.refusal;
    return reply;
}

}  // namespace

void AddRefreshEndpoint(EndpointTable& endpoints, PlatformState& state) {
    endpoints.Add("POST", kPathRefresh,
                  PortalEndpoint([&state](const PlatformRequest& request) { return Refresh(request, state); }));
}

}  // namespace sandbox
