#include <UserAuthService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

StepResult AskRoutingService(SessionState& state, const std::string& url) {
    std::map<std::string, std::string> headers;
    const std::string text = state.service->GetRtqRemoteInfo(ToWide(url), headers);
    Table table{{"header", "value"}, {}};
    for (const auto& [name, value] : headers) {
        table.rows.push_back({name, value});
    }
    StepResult result{!text.empty(), std::to_string(text.size()) + " bytes", {{"text", text}}, table};
    if (text.empty()) {
        result = {false, SeeLog("no text"), {}, table};
    }
    return result;
}

}  // namespace

std::vector<Step> RouteSteps(SessionState& state, const std::string& url) {
    return {{"routing", "routing service asked", [&state, url] { return AskRoutingService(state, url); }}};
}

std::vector<Step> DemoRouteSteps(SessionState& state) {
    return RouteSteps(state, state.platformUrl + "/routing/v1/remote");
}

}  // namespace host
