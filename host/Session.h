#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Console.h"
#include "PortraitWindow.h"
#include "SandboxProcess.h"
#include "StepReport.h"
#include "TemporaryFolder.h"

class UserAuthService;

namespace host {

// What the steps of one session share.
struct SessionState {
    explicit SessionState(const Options& given) : options(given) {}
    ~SessionState();
    SessionState(const SessionState&) = delete;
    SessionState& operator=(const SessionState&) = delete;

    const Options& options;
    TemporaryFolder folder;
    std::unique_ptr<SandboxProcess> sandbox;  // null without demo; after the folder, which holds its file
    std::string platformUrl;                  // empty until the set-up has run
    UserAuthService* service = nullptr;       // null until it was created
    std::string authorizationCode;            // from its delivery to its exchange
    std::unique_ptr<PortraitWindow> window;   // null until a profile is requested
    std::wstring gatewayUserId;               // what the two look-ups found last
    std::wstring syncServerUserId;
    bool sdkInitialised = false;
};

// Runs the commands and shows their steps. Returns an ExitCode; throws HostError.
int RunSession(const Options& options, Console& console);

// The steps of each stretch of a session, in order. The state must outlive them.
std::vector<Step> SetUpSteps(SessionState& state);
std::vector<Step> CreationSteps(SessionState& state);  // the service; needed by all that follow
std::vector<Step> SignInSteps(SessionState& state);
std::vector<Step> ApplicationTokenSteps(SessionState& state);
std::vector<Step> WhoAmISteps(SessionState& state);
std::vector<Step> RegistrationSteps(SessionState& state);
std::vector<Step> ProfileSteps(SessionState& state);
std::vector<Step> RefreshSteps(SessionState& state);
std::vector<Step> ExpiredTokenSteps(SessionState& state);  // with a sandbox of our own only
std::vector<Step> StatusSteps(SessionState& state);
std::vector<Step> AccountSteps(SessionState& state);  // what else a client asks while somebody is signed in
std::vector<Step> SignOutSteps(SessionState& state);
std::vector<Step> CloseSteps(SessionState& state);

}  // namespace host
