#include "RunSession.h"

#include <UserAuthService.h>

#include "steps/Steps.h"
#include "system/HostError.h"

namespace host {
namespace {

using Stretch = std::vector<Step> (*)(SessionState& state);

// A client's whole life: the last refresh is refused, so the session ends with a sign-in to be asked for.
constexpr Stretch kDemo[] = {SignInSteps,        WhoAmISteps,           ProfileSteps,   RegistrationSteps,
                             ConfigurationSteps, ActivationSteps,       ReportSteps,    DeviceSteps,
                             RefreshSteps,       ApplicationTokenSteps, SyncKeySteps,   ComparedKeySteps,
                             LegacySignInSteps,  DemoContactsSteps,     DemoRouteSteps, AccountSdkSteps,
                             StatusSteps,        ExpiredTokenSteps,     SignOutSteps};

std::vector<Step> DemoSteps(SessionState& state) {
    std::vector<Step> demo;
    for (const Stretch stretch : kDemo) {
        const std::vector<Step> steps = stretch(state);
        demo.insert(demo.end(), steps.begin(), steps.end());
    }
    return demo;
}

std::vector<Step> OwnSteps(const CommandCall& call, SessionState& state) {
    switch (call.command) {
        case Command::kSignIn:
            return SignInSteps(state);
        case Command::kWhoAmI:
            return WhoAmISteps(state);
        case Command::kProfile:
            return ProfileSteps(state);
        case Command::kRegistration:
            return RegistrationSteps(state);
        case Command::kModules:
            return ConfigurationSteps(state);
        case Command::kActivate:
            return ActivationSteps(state);
        case Command::kReport:
            return ReportSteps(state);
        case Command::kDevices:
            return DeviceSteps(state);
        case Command::kRefresh:
            return RefreshSteps(state);
        case Command::kApplicationToken:
            return ApplicationTokenSteps(state);
        case Command::kKeys:
            return SyncKeySteps(state);
        case Command::kMigrate:
            return LegacySignInSteps(state);
        case Command::kContacts:
            return ContactsSteps(state, call.argument);
        case Command::kRoute:
            return RouteSteps(state, call.argument);
        case Command::kStatus:
            return StatusSteps(state);
        case Command::kSignOut:
            return SignOutSteps(state);
        case Command::kDemo:
            break;
    }
    return DemoSteps(state);
}

std::vector<Step> MissingSessionSteps(Command command) {
    const std::string text = NameOf(command) + " needs a session: put sign-in before it";
    return {{"session", "somebody signed in", [text] { return StepResult{false, text, {}}; }}};
}

std::vector<Step> StepsOf(const CommandCall& call, SessionState& state) {
    const Needs needs = NeedsOf(call.command);
    if (needs != Needs::kNothing && state.service->GetCurrentAT().empty()) {
        return MissingSessionSteps(call.command);
    }
    std::vector<Step> steps = OwnSteps(call, state);
    if (needs == Needs::kUserId && state.service->GetCurrentUserID().empty()) {
        const std::vector<Step> before = UserIdSteps(state);
        steps.insert(steps.begin(), before.begin(), before.end());
    }
    return steps;
}

bool RunCommands(SessionState& state, StepReport& report) {
    if (!report.RunAll(SetUpSteps(state)) || !report.RunAll(CreationSteps(state))) {
        return false;
    }
    for (const CommandCall& call : state.options.commands) {
        if (!report.RunAll(StepsOf(call, state))) {
            return false;
        }
    }
    return true;
}

// Releases the SDK and writes the closing line, also when a step ended the session by an exception.
class SessionEnd {
public:
    SessionEnd(SessionState& state, StepReport& report) : m_state(state), m_report(report) {}
    ~SessionEnd() {
        try {
            m_report.RunAll(CloseSteps(m_state));
            m_report.Conclude();
        } catch (const std::exception&) {  // no memory for the line: what ended the session is told anyway
        }
    }
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;

private:
    SessionState& m_state;
    StepReport& m_report;
};

}  // namespace

int RunSession(const Options& options, Console& console) {
    SessionState state(options, console);
    StepReport report(console, options);
    {
        const SessionEnd end(state, report);
        RunCommands(state, report);
    }
    return report.AllSucceeded() ? kExitOk : kExitStepFailed;
}

}  // namespace host
