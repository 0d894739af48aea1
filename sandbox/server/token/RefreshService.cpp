#include "token/RefreshService.h"

#include "checks/HeaderInspection.h"
#include "checks/PortalRequest.h"
#include "checks/TraceId.h"
#include "checks/WireConstants.h"

namespace sandbox {
namespace {

// These and nothing else of the client's.
std::string HeaderFault(const PlatformRequest& request) {
    HeaderInspection inspection(request.head);
    inspection.ExpectPresent("refreshToken");
    inspection.ExpectDeviceId("deviceId");
    inspection.ExpectPresent("userId");
    inspection.Expect("Cookie", kSiteCookie);
    inspection.ExpectContentLength(request.body.size());
    inspection.RefuseOtherFields();
    return inspection.Reason();
}

// No header carries the trace id here.
std::string QueryFault(const PlatformRequest& request) {
    constexpr std::string_view kStart = "traceId=";
    const auto query = std::string_view(request.query);
    if (query.substr(0, kStart.size()) != kStart) {
        return "the query does not begin with traceId=";
    }
    const auto fault = TraceIdFault(query.substr(kStart.size()), kCommandRefresh, UnixTime());
    return fault.empty() ? "" : "traceId " + fault;
}

// A refused token has status 200 as well, on purpose: its reply only lacks the new one.
PlatformReply ExchangeReply(const RefreshExchange& exchange) {
    Json::Value reply(Json::objectValue);
    if (exchange.accessToken) {
        reply["token"] = *exchange.accessToken;
        reply["result"] = PortalResult(kResultSuccess, "success");
    } else {
        reply["result"] = PortalResult(kResultRefreshRefused, exchange.refusal);
    }
    return {200, JsonLine(reply), {}};
}

PlatformReply Refresh(const PlatformRequest& request, PlatformState& state) {
    if (auto refusal = RefusalOf({HeaderFault(request), QueryFault(request), NullBodyFault(request)})) {
        return *std::move(refusal);
    }
    const auto& head = request.head;
    const auto exchange =
        state.Refresh(head.OnlyValue("refreshToken"), {head.OnlyValue("deviceId"), head.OnlyValue("userId")});
    if (exchange.wrongClaim != nullptr) {
        return RefusalOf({exchange.wrongClaim + (": " + exchange.refusal), "", ""}).value();
    }
    return ExchangeReply(exchange);
}

}  // namespace

void AddRefreshEndpoint(EndpointTable& endpoints, PlatformState& state) {
    endpoints.Add("POST", kPathRefresh, [&state](const PlatformRequest& request) { return Refresh(request, state); });
}

}  // namespace sandbox
