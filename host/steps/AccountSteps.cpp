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
    return {changed, std::string(changed ? "changed" : "not changed") + " for a made-up user id"};
}

StepResult RegisterLogoutEntry(SessionState& state) {
    std::string name = "Sign out";
    std::string description = "Ends the session of this computer";
    const int code = static_cast<int>(state.service->RegisterLogout(name, description));
    return {code == 0, "RegisterLogout returned " + std::to_string(code)};
}

StepResult OpenAccountCentre(SessionState& state) {
    const int code = static_cast<int>(state.service->OpenAccountCenterInvoke());
    return {code == 0, "OpenAccountCenterInvoke returned " + std::to_string(code)};
}

StepResult ClearAccountState(SessionState& state) {
    UserAuthService& service = *state.service;
    service.Clear();
    UserSyncKeyService keys;
    keys.ClearUserSyncKey();
    const bool cleared = !keys.IsSyncDriveKeyInited() && !keys.IsCloudPhotoKeyInited() &&
                         service.GetCurrentAT().empty() && service.GetCurrentRT().empty() &&
                         service.GetCurrentUserID().empty() && service.GetCurrentUserHeadImageLocalPath().empty();
    return {cleared, "tokens, user id and sync keys are gone; the parameter store is the client's to clear"};
}

StepResult UninitialiseSdk(SessionState& state) {
    const int code = static_cast<int>(state.service->UnInitializeSDK());
    return {code == 0, "UnInitializeSDK returned " + std::to_string(code)};
}

StepResult AskRoute(SessionState& state) {
    const std::string url = state.sandbox ? state.platformUrl + "/routing/v1/remote" : state.call->argument;
    std::map<std::string, std::string> headers;
    const std::string text = state.service->GetRtqRemoteInfo(ToWide(url), headers);
    Table table{{"header", "value"}};
    for (const auto& [name, value] : headers) {
        table.rows.push_back({name, value});
    }
    if (text.empty()) {
        return {false, SeeLog("no text"), {}, table};
    }
    return {true, std::to_string(text.size()) + " bytes", {{"text", text}}, table};
}

}  // namespace

std::vector<Step> StatusSteps() {
    return {{"status", "account state", ShowAccountState}};
}

std::vector<Step> AccountSdkSteps() {
    return {
        {"account-changed", "account SDK compares the user", AskMadeUpUser},
        {"register-logout", "logout entry registered", RegisterLogoutEntry},
        {"account-centre", "account centre opened", OpenAccountCentre},
    };
}

std::vector<Step> SignOutSteps() {
    return {{"sign-out", "account state cleared", ClearAccountState}};
}

std::vector<Step> CloseSteps() {
    return {{"close-sdk", "account SDK released", UninitialiseSdk}};
}

std::vector<Step> RouteSteps() {
    return {{"routing", "routing service asked", AskRoute}};
}

}  // namespace host
