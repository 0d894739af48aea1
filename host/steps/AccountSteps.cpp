#include <UserAuthService.h>
#include <UserSyncKeyService.h>

#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

StepResult ShowAccountState(SessionState& state) {
    UserAuthService& service = *state.service;
    UserSyncKeyService keys;
    const std::wstring accessToken = service.GetCurrentAT();
    return {true,
            accessToken.empty() ? "not signed in" : "signed in",
            {
                {"access token", LengthOnly(accessToken)},
                {"refresh token", LengthOnly(service.GetCurrentRT())},
                {"user id", TextOrNone(service.GetCurrentUserID())},
                {"user name", TextOrNone(service.GetCurrentUserName())},
                {"portrait URL", TextOrNone(service.GetCurrentUserHeadImageUrl())},
                {"portrait file", TextOrNone(service.GetCurrentUserHeadImageLocalPath())},
                {"account brand", std::to_string(service.GetCurrentUserAccountBrandID())},
                {"country", TextOrNone(service.GetCurrentCountryCode())},
                {"account activated", YesOrNo(service.IsActiveAccount())},
                {"client logs reported", YesOrNo(service.GetClientLogReportStatus())},
                {"available modules", std::to_string(service.GetValidModule().size())},
                {"sync drive key", keys.IsSyncDriveKeyInited() ? "present" : "none"},
                {"photo library key", keys.IsCloudPhotoKeyInited() ? "present" : "none"},
            }};
}

StepResult AskMadeUpUser(SessionState& state) {
    std::wstring userId = L"nobody-of-this-name";
    const bool changed = state.service->IsZmsAccountChanged(userId);
    return {changed, std::string(changed ? "changed" : "not changed") + " for a made-up user id", {}};
}

StepResult RegisterLogoutEntry(SessionState& state) {
    std::string name = "Sign out";
    std::string description = "Ends the session of this computer";
    const int code = static_cast<int>(state.service->RegisterLogout(name, description));
    return {code == 0, "RegisterLogout returned " + std::to_string(code), {}};
}

StepResult OpenAccountCentre(SessionState& state) {
    const int code = static_cast<int>(state.service->OpenAccountCenterInvoke());
    return {code == 0, "OpenAccountCenterInvoke returned " + std::to_string(code), {}};
}

StepResult ClearAccountState(SessionState& state) {
    UserAuthService& service = *state.service;
    service.Clear();
    UserSyncKeyService keys;
    keys.ClearUserSyncKey();
    const bool cleared = !keys.IsSyncDriveKeyInited() && !keys.IsCloudPhotoKeyInited() &&
                         service.GetCurrentAT().empty() && service.GetCurrentRT().empty() &&
                         service.GetCurrentUserID().empty() && service.GetCurrentUserHeadImageLocalPath().empty();
    return {cleared, "tokens, user id and sync keys are gone; the parameter store is the client's to clear", {}};
}

StepResult UninitialiseSdk(SessionState& state) {
    const int code = static_cast<int>(state.service->UnInitializeSDK());
    return {code == 0, "UnInitializeSDK returned " + std::to_string(code), {}};
}

}  // namespace

std::vector<Step> StatusSteps(SessionState& state) {
    return {{"status", "account state", [&state] { return ShowAccountState(state); }}};
}

std::vector<Step> AccountSdkSteps(SessionState& state) {
    return {
        {"account-changed", "account SDK compares the user", [&state] { return AskMadeUpUser(state); }},
        {"register-logout", "logout entry registered", [&state] { return RegisterLogoutEntry(state); }},
        {"account-centre", "account centre opened", [&state] { return OpenAccountCentre(state); }},
    };
}

std::vector<Step> SignOutSteps(SessionState& state) {
    return {{"sign-out", "account state cleared", [&state] { return ClearAccountState(state); }}};
}

std::vector<Step> CloseSteps(SessionState& state) {
    if (!state.sdkInitialised) {
        return {};
    }
    return {{"close-sdk", "account SDK released", [&state] { return UninitialiseSdk(state); }}};
}

}  // namespace host
