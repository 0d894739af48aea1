#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Console.h"
#include "PortraitWindow.h"
#include "SandboxProcess.h"
#include "SdkConfiguration.h"
#include "StepReport.h"
#include "TemporaryFolder.h"

class UserAuthService;

namespace host {

// What the steps of one session share.
struct SessionState {
    SessionState(const Options& given, Console& shownOn) : options(given), console(shownOn) {}
    ~SessionState();
    SessionState(const SessionState&) = delete;
    SessionState& operator=(const SessionState&) = delete;

    const Options& options;
    Console& console;  // for what a step shows while it runs
    TemporaryFolder folder;
    std::unique_ptr<SandboxProcess> sandbox;  // null without demo; after the folder, which holds its file
    std::string platformUrl;                  // empty until the set-up has run
    UserAuthService* service = nullptr;       // null until it was created
    std::string authorizationCode;            // from its delivery to its exchange
    std::unique_ptr<PortraitWindow> window;   // null until a profile is requested
    std::wstring gatewayUserId;               // what the two look-ups found last
    std::wstring syncServerUserId;
    std::string reportedBusiness;                        // what was reported last; UTF-8
    std::unique_ptr<SdkConfiguration> sdkConfiguration;  // until the SDK has read it
    bool sdkInitialised = false;
    bool madeLegacyItem = false;  // the earlier client's sign-in in the store is of this session's making
};

// Runs the commands and shows their steps. Returns an ExitCode; throws HostError.
int RunSession(const Options& options, Console& console);

// The steps of each stretch of a session, in order. The state must outlive them.
std::vector<Step> SetUpSteps(SessionState& state);
std::vector<Step> CreationSteps(SessionState& state);  // the service; needed by all that follow
std::vector<Step> SignInSteps(SessionState& state);
std::vector<Step> UserIdSteps(SessionState& state);  // for commands whose requests name the user
std::vector<Step> WhoAmISteps(SessionState& state);
std::vector<Step> ProfileSteps(SessionState& state);
std::vector<Step> RegistrationSteps(SessionState& state);
std::vector<Step> ConfigurationSteps(SessionState& state);
std::vector<Step> ActivationSteps(SessionState& state);
std::vector<Step> ReportSteps(SessionState& state);
std::vector<Step> DeviceSteps(SessionState& state);
std::vector<Step> RefreshSteps(SessionState& state);
std::vector<Step> ApplicationTokenSteps(SessionState& state);
std::vector<Step> SyncKeySteps(SessionState& state);
std::vector<Step> LegacySignInSteps(SessionState& state);
std::vector<Step> ContactsSteps(SessionState& state, const std::string& file);
std::vector<Step> RouteSteps(SessionState& state, const std::string& url);
std::vector<Step> StatusSteps(SessionState& state);
std::vector<Step> SignOutSteps(SessionState& state);
std::vector<Step> CloseSteps(SessionState& state);

// Likewise, of the demo only: with a sandbox of our own.
std::vector<Step> ComparedKeySteps(SessionState& state);
std::vector<Step> DemoContactsSteps(SessionState& state);
std::vector<Step> DemoRouteSteps(SessionState& state);
std::vector<Step> AccountSdkSteps(SessionState& state);  // what else a client asks the SDK while somebody is signed in
std::vector<Step> ExpiredTokenSteps(SessionState& state);

}  // namespace host
