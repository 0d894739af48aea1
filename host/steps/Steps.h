#pragma once

#include <string>
#include <vector>

#include "session/SessionState.h"
#include "session/StepReport.h"

namespace host {

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
