#include <ParamStore.h>
#include <UserAuthService.h>

#include <algorithm>
#include <system_error>

#include "steps/PortraitFile.h"
#include "steps/Steps.h"
#include "system/PortraitWindow.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestPortrait{20};
constexpr std::chrono::seconds kLongestFlush{2};

// A look-up that stores the user id; an empty one counts as a success to it, but not here.
StepResult LookUpUserId(SessionState& state, bool (UserAuthService::*lookUp)(), std::wstring& found) {
    const bool answered = (state.service->*lookUp)();
    found = answered ? state.service->GetCurrentUserID() : std::wstring();
    return {!found.empty(), answered ? TextOrNone(found) : SeeLog()};
}

StepResult AskGateway(SessionState& state) {
    return LookUpUserId(state, &UserAuthService::RequestUserID, state.gatewayUserId);
}

StepResult AskSyncServer(SessionState& state) {
    return LookUpUserId(state, &UserAuthService::RequestUserIdFromSyncServer, state.syncServerUserId);
}

bool IsAscii(const std::wstring& text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
}

// Compares it with what the gateway said and with the parameter store.
StepResult LookUpAtSyncServer(SessionState& state) {
    StepResult result = AskSyncServer(state);
    if (!result.ok) {
        return result;
    }
    if (GlobalParamWrapper::GetInstance()->GetUserID() != state.syncServerUserId) {
        return {false, result.detail + ", but another one in the parameter store"};
    }
    if (state.gatewayUserId == state.syncServerUserId) {
        result.detail += ", the same";
    } else if (IsAscii(state.syncServerUserId)) {
        return {false, result.detail + ", another user than the gateway's"};
    } else {
        // The gateway's id is read in the system's code page.
        result.detail += ", not the gateway's, as with ids beyond ASCII: this is the right one";
    }
    return result;
}

StepResult ShowRegistration(SessionState& state) {
    UserAuthService& service = *state.service;
    if (!service.UpdateRegistInfo()) {
        return {false, SeeLog()};
    }
    const std::wstring country = service.GetCurrentCountryCode();
    return {service.IsChinaAccount() == (country == L"CN"),
            "",
            {
                {"country", TextOrNone(country)},
                {"registered in China", YesOrNo(service.IsChinaAccount())},
                {"language type", TextOrNone(ToWide(service.GetLanguageType()))},
                {"privilege", YesOrNo(service.GetCurrentPriviledge())},
                {"client logs reported", YesOrNo(service.GetClientLogReportStatus())},
            }};
}

// One step with the wait, so that the portrait's download is among the exchanges that it shows.
StepResult RequestProfile(SessionState& state) try {
    UserAuthService& service = *state.service;
    if (!state.window) {
        state.window = std::make_unique<PortraitWindow>();
    }
    state.window->Forget();
    if (!service.RequestUserInfo()) {
        return {false, SeeLog()};
    }
    const Clock::time_point answered = Clock::now();
    const bool arrived = state.window->WaitForMessage(kLongestPortrait);
    // Every 200 is a success to the operation, also one that names nobody.
    const bool named = !service.GetCurrentUserID().empty();
    const std::string message =
        arrived ? "portrait message after " + Milliseconds(Clock::now() - answered) : "no portrait message within 20 s";
    return {arrived && named,
            named ? message : "the reply names no user; " + message,
            {
                {"user id", TextOrNone(service.GetCurrentUserID())},
                {"display name", TextOrNone(service.GetCurrentUserName())},
                {"account brand", std::to_string(service.GetCurrentUserAccountBrandID())},
                {"portrait URL", TextOrNone(service.GetCurrentUserHeadImageUrl())},
            }};
} catch (const std::system_error& error) {
    return {false, std::string("the download's thread cannot be started: ") + error.what()};
}

StepResult ShowPortrait(SessionState& state) {
    const std::wstring path = state.service->GetCurrentUserHeadImageLocalPath();
    if (state.service->GetCurrentUserHeadImageUrl().empty()) {
        return {path.empty(), "no portrait"};
    }
    if (path.empty()) {
        return {false, SeeLog("the download failed")};
    }
    const PortraitFile portrait = ReadPortraitFile(path, kLongestFlush);
    if (!portrait.fault.empty()) {
        return {false, portrait.fault, {{"path", ToUtf8(path)}}};
    }
    return {portrait.bytes != 0,
            portrait.imageType + ", " + std::to_string(portrait.bytes) + " bytes",
            {{"path", ToUtf8(path)}}};
}

}  // namespace

std::vector<Step> UserIdSteps() {
    return {{"user-id", "user id from sync server", AskSyncServer}};
}

std::vector<Step> WhoAmISteps() {
    return {
        {"gateway-user-id", "user id from gateway", AskGateway},
        {"sync-server-user-id", "user id from sync server", LookUpAtSyncServer},
    };
}

std::vector<Step> RegistrationSteps() {
    return {{"registration", "registration place", ShowRegistration}};
}

std::vector<Step> ProfileSteps() {
    return {
        {"profile", "profile and portrait message", RequestProfile},
        {"portrait", "portrait file", ShowPortrait},
    };
}

}  // namespace host
