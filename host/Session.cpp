#include "Session.h"

#include "ExitCode.h"

namespace host {
namespace {

std::vector<Step> StepsOf(Command command, SessionState& state) {
    switch (command) {
        case Command::kSignIn:
            return SignInSteps(state);
        case Command::kStatus:
            return StatusSteps(state);
        case Command::kSignOut:
            return SignOutSteps(state);
        case Command::kDemo:
            break;
    }
    std::vector<Step> demo;
    for (const auto& stretch : {SignInSteps, AccountSteps, StatusSteps, SignOutSteps}) {
        const std::vector<Step> steps = stretch(state);
        demo.insert(demo.end(), steps.begin(), steps.end());
    }
    return demo;
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

int RunSession(const Options& options, Console& console) {
    SessionState state(options);
    StepReport report(console, options.json);
    RunCommands(state, report);
    report.RunAll(CloseSteps(state));
    report.Conclude();
    return report.AllSucceeded() ? kExitOk : kExitStepFailed;
}

}  // namespace host
