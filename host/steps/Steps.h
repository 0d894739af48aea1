#pragma once

#include <vector>

#include "session/SessionState.h"
#include "session/StepReport.h"

namespace host {

// The steps of each part of a session, in order.
std::vector<Step> SetUpSteps(bool withSandbox, bool needsPlatform);  // the last one creates the service
std::vector<Step> SignInSteps();
std::vector<Step> UserIdSteps();  // for commands whose requests name the user
std::vector<Step> WhoAmISteps();
std::vector<Step> ProfileSteps();
std::vector<Step> RegistrationSteps();
std::vector<Step> ConfigurationSteps();
std::vector<Step> ActivationSteps();
std::vector<Step> ReportSteps();
std::vector<Step> DeviceSteps();
std::vector<Step> RefreshSteps();
std::vector<Step> ApplicationTokenSteps();
std::vector<Step> SyncKeySteps();
std::vector<Step> LegacySignInSteps();
std::vector<Step> ContactsSteps();
std::vector<Step> RouteSteps();  // at the URL of the command; in the demo at that of its sandbox
std::vector<Step> StatusSteps();
std::vector<Step> SignOutSteps();
std::vector<Step> DoctorSteps();  // each stands for itself; no service is needed
std::vector<Step> CloseSteps();   // once the SDK was initialised

// Steps of the demo only. They need the sandbox that it started.
std::vector<Step> ComparedKeySteps();
std::vector<Step> DemoContactsSteps();
std::vector<Step> AccountSdkSteps();  // the SDK's other questions and requests
std::vector<Step> ExpiredTokenSteps();

}  // namespace host
