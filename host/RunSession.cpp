#include "RunSession.h"

#include <UserAuthService.h>

#include <algorithm>
#include <iterator>

#include "steps/Steps.h"
#include "system/HostError.h"

namespace host {
namespace {

using Stretch = std::vector<Step> (*)();

// What must be there before a command.
enum class Needs {
    kNothing,
    kPlatform,  // one that answers
    kSession,   // tokens, from an earlier command
    kUserId,    // tokens and the user id
};

struct Command {
    CommandForm form;
    Needs needs;
    Stretch steps;
};

// A client's whole life. At its end a refresh is refused, so that the client would ask for a sign-in again.
std::vector<Step> DemoSteps() {
    constexpr Stretch kDemo[] = {SignInSteps,        WhoAmISteps,           ProfileSteps, RegistrationSteps,
                                 ConfigurationSteps, ActivationSteps,       ReportSteps,  DeviceSteps,
                                 RefreshSteps,       ApplicationTokenSteps, SyncKeySteps, ComparedKeySteps,
                                 LegacySignInSteps,  DemoContactsSteps,     RouteSteps,   AccountSdkSteps,
                                 StatusSteps,        ExpiredTokenSteps,     SignOutSteps};
    std::vector<Step> demo;
    for (const Stretch stretch : kDemo) {
        const std::vector<Step> steps = stretch();
        demo.insert(demo.end(), steps.begin(), steps.end());
    }
    return demo;
}

constexpr Command kCommands[] = {
    {{"demo", "", "start the sandbox platform from this program's folder and show a whole session"},
     Needs::kPlatform,
     DemoSteps},
    {{"sign-in", "", "sign in through the account SDK and exchange the code for the tokens"},
     Needs::kPlatform,
     SignInSteps},
    {{"whoami", "", "look up the user id, at the gateway and at the sync server"}, Needs::kSession, WhoAmISteps},
    {{"profile", "", "fetch name, brand and portrait, and wait for the portrait message"},
     Needs::kSession,
     ProfileSteps},
    {{"registration", "", "look up what goes with the account's registration place"},
     Needs::kSession,
     RegistrationSteps},
    {{"modules", "", "fetch the system configuration: is the client available, which modules are on"},
     Needs::kUserId,
     ConfigurationSteps},
    {{"activate", "", "have the platform refresh the account's activation"}, Needs::kUserId, ActivationSteps},
    {{"report", "",
      "report that the data of a business is initialised (drive, or that of --business),\n"
      "and ask whether client logs are wanted"},
     Needs::kUserId,
     ReportSteps},
    {{"devices", "", "list the devices that signed in to the account lately"}, Needs::kSession, DeviceSteps},
    {{"refresh", "", "obtain a new access token with the refresh token"}, Needs::kSession, RefreshSteps},
    {{"application-token", "", "fetch the application's own access token"}, Needs::kSession, ApplicationTokenSteps},
    {{"keys", "", "retrieve the sync keys; shows their uuids and SHA-256 fingerprints, never a key"},
     Needs::kUserId,
     SyncKeySteps},
    {{"migrate", "",
      "take over an earlier client's sign-in: item \"0\" of the \"legacyItems\" in the file of\n"
      "--config; without one, the session's refresh token protected as that client did.\n"
      "What is signed in before is signed out"},
     Needs::kPlatform,
     LegacySignInSteps},
    {{"contacts", "export FILE",
      "download the contacts as a vCard file, which replaces an existing one when all has\n"
      "come; from --url with the cookies of its portal, or from a sandbox at --platform,\n"
      "which tells both"},
     Needs::kNothing,
     ContactsSteps},
    {{"route", "URL", "ask the routing service at this URL; shows headers and text"}, Needs::kNothing, RouteSteps},
    {{"status", "", "show what the account state holds; tokens by their length only"}, Needs::kNothing, StatusSteps},
    {{"sign-out", "", "clear the account state and the sync keys"}, Needs::kNothing, SignOutSteps},
};

const Command& CommandOf(const CommandCall& call) {
    return *std::find_if(std::begin(kCommands), std::end(kCommands),
                         [&call](const Command& command) { return command.form.name == call.name; });
}

StepResult MissSession(SessionState& state) {
    return {false, state.call->name + " needs a session: put sign-in before it"};
}

std::vector<Step> StepsOf(const Command& command, UserAuthService& service) {
    const bool needsUserId = command.needs == Needs::kUserId;
    if ((needsUserId || command.needs == Needs::kSession) && service.GetCurrentAT().empty()) {
        return {{"session", "somebody signed in", MissSession}};
    }
    std::vector<Step> steps = command.steps();
    if (needsUserId && service.GetCurrentUserID().empty()) {
        const std::vector<Step> before = UserIdSteps();
        steps.insert(steps.begin(), before.begin(), before.end());
    }
    return steps;
}

void RunCommands(SessionState& state, StepReport& report) {
    const std::vector<CommandCall>& calls = state.options.commands;
    const bool needsPlatform = std::any_of(
        calls.begin(), calls.end(), [](const CommandCall& call) { return CommandOf(call).needs == Needs::kPlatform; });
    bool goesOn = report.RunAll(SetUpSteps(state.options.Has("demo"), needsPlatform));
    for (auto call = calls.begin(); goesOn && call != calls.end(); ++call) {
        state.call = &*call;
        goesOn = report.RunAll(StepsOf(CommandOf(*call), *state.service));
    }
}

// Releases the SDK and writes the closing line, also when a step ended the session by an exception.
struct SessionEnd {
    ~SessionEnd() {
        try {
            if (state.sdkInitialised) {
                for (const Step& step : CloseSteps()) {
                    report.Run(step);  // after Ctrl-C too
                }
            }
            report.Conclude();
        } catch (const std::exception&) {
            // No memory for the line. The exception that ended the session goes on to main, which reports it.
        }
    }

    SessionState& state;
    StepReport& report;
};

}  // namespace

CommandForms Commands() {
    CommandForms forms;
    for (const Command& command : kCommands) {
        forms.push_back(command.form);
    }
    return forms;
}

int RunSession(const Options& options, Console& console) {
    SessionState state(options, console);
    StepReport report(state);
    {
        const SessionEnd end{state, report};
        RunCommands(state, report);
    }
    return report.AllSucceeded() ? kExitOk : kExitStepFailed;
}

}  // namespace host
