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
    {{"demo", "", "start the sandbox platform from this program's folder and show a whole session", "demo --https"},
     Needs::kPlatform,
     DemoSteps},
    {{"sign-in", "", "sign in through the account SDK and exchange the code for the tokens",
      "sign-in --platform http://127.0.0.1:8080"},
     Needs::kPlatform,
     SignInSteps},
    {{"whoami", "", "look up the user id, at the gateway and at the sync server",
      "sign-in whoami --platform http://127.0.0.1:8080"},
     Needs::kSession,
     WhoAmISteps},
    {{"profile", "", "fetch name, brand and portrait, and wait for the portrait message",
      "sign-in profile --config client.json --log userauth.log"},
     Needs::kSession,
     ProfileSteps},
    {{"registration", "", "look up what goes with the account's registration place",
      "sign-in registration --config client.json"},
     Needs::kSession,
     RegistrationSteps},
    {{"modules", "", "fetch the system configuration: is the client available, which modules are on",
      "sign-in modules --config client.json --json"},
     Needs::kUserId,
     ConfigurationSteps},
    {{"activate", "", "have the platform refresh the account's activation", "sign-in activate --config client.json"},
     Needs::kUserId,
     ActivationSteps},
    {{"report", "",
      "report that the data of a business is initialised (drive, or that of --business),\n"
      "and ask whether client logs are wanted",
      "sign-in report --business photo --config client.json"},
     Needs::kUserId,
     ReportSteps},
    {{"devices", "", "list the devices that signed in to the account lately",
      "sign-in devices --config client.json --certificate-authority ca.pem"},
     Needs::kSession,
     DeviceSteps},
    {{"refresh", "", "obtain a new access token with the refresh token", "sign-in refresh whoami --config client.json"},
     Needs::kSession,
     RefreshSteps},
    {{"application-token", "", "fetch the application's own access token",
      "sign-in application-token --config client.json"},
     Needs::kSession,
     ApplicationTokenSteps},
    {{"keys", "", "retrieve the sync keys; shows their uuids and SHA-256 fingerprints, never a key",
      "sign-in keys --config client.json"},
     Needs::kUserId,
     SyncKeySteps},
    {{"migrate", "",
      "take over an earlier client's sign-in: item \"0\" of the \"legacyItems\" in the file of\n"
      "--config; without one, the session's refresh token protected as that client did.\n"
      "What is signed in before is signed out",
      "migrate status --config client.json"},
     Needs::kPlatform,
     LegacySignInSteps},
    {{"contacts", "export FILE",
      "download the contacts as a vCard file, which replaces an existing one when all has\n"
      "come; from --url with the cookies of its portal, or from a sandbox at --platform,\n"
      "which tells both",
      "contacts export contacts.vcf --url https://portal.example.com/export --cookie-file cookies.txt"},
     Needs::kNothing,
     ContactsSteps},
    {{"route", "URL", "ask the routing service at this URL; shows headers and text",
      "route https://portal.example.com/route"},
     Needs::kNothing,
     RouteSteps},
    {{"status", "", "show what the account state holds; tokens by their length only",
      "sign-in status --config client.json"},
     Needs::kNothing,
     StatusSteps},
    {{"sign-out", "", "clear the account state and the sync keys", "sign-in sign-out status --config client.json"},
     Needs::kNothing,
     SignOutSteps},
    {{"doctor", "",
      "check what this program needs: libraries, account SDK, configuration, certificates,\n"
      "proxy, platform and clock; says what to do about each fault",
      "doctor --config client.json"},
     Needs::kNothing,
     DoctorSteps},
    {{"completion", "SHELL", "print a script for bash or powershell that completes commands and options",
      "completion bash"},
     Needs::kNothing,
     nullptr},  // the command line answers it
};

constexpr char kAfterDemo[] =
    "\n"
    "To try next: sandbox-server --http-port 8080   a platform, in a second terminal\n"
    "             userauth sign-in whoami devices --platform http://127.0.0.1:8080\n"
    "             userauth --help                   each command with an example\n";

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
    if (state.options.Has("doctor")) {
        for (const Step& step : DoctorSteps()) {
            report.Run(step);  // a fault says nothing about the next check
        }
        return;
    }
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
            if (state.options.Has("demo") && !state.options.json && report.AllSucceeded()) {
                state.console.Write(kAfterDemo);
            }
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
