#include "Session.h"

#include <ParamStore.h>
#include <UserAuthService.h>

#include "ExitCode.h"

namespace host {
namespace {

using Stretch = std::vector<Step> (*)(SessionState& state);

constexpr Stretch kDemo[] = {SignInSteps,  ApplicationTokenSteps, WhoAmISteps,  RegistrationSteps, ProfileSteps,
                             RefreshSteps, ExpiredTokenSteps,     AccountSteps, StatusSteps,       SignOutSteps};

std::vector<Step> DemoSteps(SessionState& state) {
    std::vector<Step> demo;
    for (const Stretch stretch : kDemo) {
        const std::vector<Step> steps = stretch(state);
        demo.insert(demo.end(), steps.begin(), steps.end());
    }
    return demo;
}

Stretch StretchOf(Command command) {
    switch (command) {
        case Command::kSignIn:
            return SignInSteps;
        case Command::kApplicationToken:
            return ApplicationTokenSteps;
        case Command::kWhoAmI:
            return WhoAmISteps;
        case Command::kRegistration:
            return RegistrationSteps;
        case Command::kProfile:
            return ProfileSteps;
        case Command::kRefresh:
            return RefreshSteps;
        case Command::kStatus:
            return StatusSteps;
        case Command::kSignOut:
            return SignOutSteps;
        case Command::kDemo:
            break;
    }
    return DemoSteps;
}

std::vector<Step> MissingSessionSteps(Command command) {
    const std::string text = NameOf(command) + " needs a session: put sign-in before it";
    return {{"session", "somebody signed in", [text] { return StepResult{false, text, {}}; }}};
}

std::vector<Step> StepsOf(Command command, SessionState& state) {
    const bool signedIn = !state.service->GetCurrentAT().empty();
    return NeedsSession(command) && !signedIn ? MissingSessionSteps(command) : StretchOf(command)(state);
}

bool RunCommands(SessionState& state, StepReport& report) {
    if (!report.RunAll(SetUpSteps(state)) || !report.RunAll(CreationSteps(state))) {
        return false;
    }
    for (const Command command : state.options.commands) {
        if (!report.RunAll(StepsOf(command, state))) {
            return false;
        }
    }
    return true;
}

}  // namespace

// A download may still run: it must not find a window that is gone.
SessionState::~SessionState() {
    GlobalParamWrapper::GetInstance()->SetMainWnd(nullptr);
}

int RunSession(const Options& options, Console& console) {
    SessionState state(options);
    StepReport report(console, options.json);
    RunCommands(state, report);
    report.RunAll(CloseSteps(state));
    report.Conclude();
    return report.AllSucceeded() ? kExitOk : kExitStepFailed;
}

}  // namespace host
