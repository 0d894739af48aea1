#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include "platform/SandboxClient.h"
#include "steps/Steps.h"
#include "text/FieldText.h"

namespace host {
namespace {

StepResult RequestApplicationToken(SessionState& state) {
    const bool answered = state.service->RequestApplicationAT();
    // The operation succeeds with every reply of status 200, also with one without a token.
    const std::wstring token = GlobalParamWrapper::GetInstance()->GetAppAT();
    return {answered && !token.empty(), answered ? LengthOnly(token) + " in parameter store" : SeeLog()};
}

struct RefreshAttempt {
    bool refreshed = false;
    int callbacks = 0;  // how often the AT-expiry callback ran
    bool onCallingThread = true;
};

// Refreshes while an AT-expiry callback of ours is set.
RefreshAttempt AttemptRefresh(UserAuthService& service) {
    RefreshAttempt attempt;
    const DWORD caller = GetCurrentThreadId();
    service.SetAtExpireCallback([&attempt, caller] {
        ++attempt.callbacks;
        attempt.onCallingThread = attempt.onCallingThread && GetCurrentThreadId() == caller;
    });
    attempt.refreshed = service.GetAccessTokenByRefrshToken();
    service.SetAtExpireCallback(nullptr);
    return attempt;
}

std::string WhyNotRefreshed(UserAuthService& service, const RefreshAttempt& attempt) {
    if (service.GetCurrentRT().empty()) {
        return "there is no refresh token: sign in again";
    }
    return attempt.callbacks != 0 ? "answered without a token, the AT-expiry callback ran: sign in again"
                                  : SeeLog("the exchange failed, try again later");
}

StepResult Refresh(SessionState& state) {
    GlobalParamWrapper& store = *GlobalParamWrapper::GetInstance();
    const std::wstring before = state.service->GetCurrentAT();
    store.SetAtIsExpired(true);  // as a client does when a server refuses the token
    const RefreshAttempt attempt = AttemptRefresh(*state.service);
    if (!attempt.refreshed) {
        return {false, WhyNotRefreshed(*state.service, attempt)};
    }
    const std::wstring now = state.service->GetCurrentAT();
    const bool changed = now != before;
    const bool stored = store.GetCurrentAt() == now && !store.GetAtIsExpired();
    const bool mustChange = state.sandbox != nullptr;  // the sandbox never issues a token twice
    return {stored && (changed || !mustChange), "access token " + LengthOnly(now) +
                                                    (changed ? ", changed" : ", not changed") +
                                                    "; expired in parameter store: " + YesOrNo(store.GetAtIsExpired())};
}

// The sandbox answers a revoked refresh token with status 200 and without a new token.
StepResult RefreshInVain(SessionState& state) {
    if (!TellSandbox(state.sandbox->Address().http, "/sandbox/revoke", "{\"kind\":\"refresh\"}")) {
        return {false, "the sandbox does not revoke the refresh token"};
    }
    const std::wstring before = state.service->GetCurrentAT();
    const RefreshAttempt attempt = AttemptRefresh(*state.service);
    const bool expected = !attempt.refreshed && attempt.callbacks == 1 && attempt.onCallingThread &&
                          state.service->GetCurrentAT() == before;
    return {expected, std::string("refresh token revoked by sandbox, refresh ") +
                          (attempt.refreshed ? "granted" : "refused") + ", callback ran " +
                          std::to_string(attempt.callbacks) + (attempt.callbacks == 1 ? " time" : " times") +
                          (attempt.onCallingThread ? " on the calling thread" : " on another thread")};
}

}  // namespace

std::vector<Step> ApplicationTokenSteps() {
    return {{"application-token", "application token", RequestApplicationToken}};
}

std::vector<Step> RefreshSteps() {
    return {{"refresh", "access token refreshed", Refresh}};
}

std::vector<Step> ExpiredTokenSteps() {
    return {{"at-expiry", "AT-expiry callback on refused refresh", RefreshInVain}};
}

}  // namespace host
