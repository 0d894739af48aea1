#include <UserAuthService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"

namespace host {
namespace {

constexpr char kDefaultBusiness[] = "drive";

StepResult ReportInitialisation(SessionState& state) {
    const std::string& business = state.options.business;
    state.reportedBusiness = business.empty() ? kDefaultBusiness : business;
    state.service->ReportLoginTime(state.reportedBusiness);
    StepResult result{true, "business " + state.reportedBusiness, {}};
    result.judgedByStatus = true;
    return result;
}

StepResult AskClientLogs(SessionState& state) {
    const bool answered = state.service->RequestClientLogReport();
    return {answered,
            answered ? "client logs reported: " + YesOrNo(state.service->GetClientLogReportStatus()) : SeeLog(),
            {}};
}

}  // namespace

std::vector<Step> ReportSteps(SessionState& state) {
    return {
        {"report", "initialisation reported", [&state] { return ReportInitialisation(state); }},
        {"client-logs", "client logs asked about", [&state] { return AskClientLogs(state); }},
    };
}

}  // namespace host
