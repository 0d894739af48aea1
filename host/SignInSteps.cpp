#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include "FieldText.h"
#include "ModuleFolder.h"
#include "Session.h"
#include "SignInOutcome.h"
#include "TextEncoding.h"

namespace host {
namespace {

constexpr std::chrono::seconds kLongestSignIn{15};

StepResult SdkResult(const char* operation, int code) {
    const bool missing = code == static_cast<int>(ZvIdErrorType::kEntryPointMissing);
    const char* const meaning = code == 0 ? "" : missing ? ", it lacks the entry point" : ", a code of its own";
    return {code == 0, std::string(operation) + ": account SDK returned " + std::to_string(code) + meaning, {}};
}

StepResult CreateService(SessionState& state) {
    state.service = UserAuthService::GetInstance();
    const std::filesystem::path sdk = LoadedAccountSdk();
    if (sdk.empty()) {
        return {false, "ZVAccountSdk.dll did not load: it belongs beside UserAuthService.dll", {}};
    }
    return {state.service->GetGPWPtr() == GlobalParamWrapper::GetInstance(), ToUtf8(sdk.filename().wstring()), {}};
}

StepResult InitialiseSdk(SessionState& state) {
    const int code = state.service->InitZms(&OnAccountNotification);
    state.sdkInitialised = code == 0;
    return SdkResult("InitZms", code);
}

StepResult CheckStartSend(SessionState&) {
    return {GlobalParamWrapper::GetInstance()->GetStartSend(), "set by InitZms", {}};
}

StepResult StartSignIn(SessionState& state) {
    ForgetSignInOutcome();
    return SdkResult("ZmsSignIn", static_cast<int>(state.service->ZmsSignIn()));
}

StepResult AwaitCode(SessionState& state) {
    const std::optional<SignInOutcome> outcome = WaitForSignInOutcome(kLongestSignIn);
    if (!outcome) {
        return {false, "the account SDK did not call back within 15 s", {}};
    }
    if (!outcome->succeeded) {
        return {false, outcome->reason, {}};
    }
    state.authorizationCode = outcome->authorizationCode;
    const std::string threads = "callback on thread " + std::to_string(outcome->threadId) + ", caller on thread " +
                                std::to_string(GetCurrentThreadId());
    return {outcome->threadId != GetCurrentThreadId(), Characters(state.authorizationCode.size()) + ", " + threads, {}};
}

StepResult ExchangeCode(SessionState& state) {
    const std::string code = std::exchange(state.authorizationCode, std::string());
    const bool exchanged = state.service->RequestAT(code, code.c_str());
    return {exchanged, exchanged ? "" : "RequestAT refused: --verbose shows the log", {}};
}

StepResult CheckTokens(SessionState& state) {
    const std::size_t accessToken = state.service->GetCurrentAT().size();
    const std::size_t refreshToken = state.service->GetCurrentRT().size();
    return {accessToken != 0 && refreshToken != 0,
            "access token " + Characters(accessToken) + ", refresh token " + Characters(refreshToken),
            {}};
}

StepResult CheckCountry(SessionState& state) {
    const std::string country = state.service->GetCountryCode();
    return {!country.empty() && ToWide(country) == state.service->GetCurrentCountryCode(), country, {}};
}

StepResult CompareStore(SessionState& state) {
    const GlobalParamWrapper& store = *GlobalParamWrapper::GetInstance();
    const std::wstring accessToken = store.GetCurrentAt();
    const std::wstring refreshToken = store.GetCurrentRt();
    const bool same = accessToken == state.service->GetCurrentAT() && refreshToken == state.service->GetCurrentRT();
    return {same,
            std::string(same ? "the same" : "other") + " tokens: " + Characters(accessToken.size()) + " and " +
                Characters(refreshToken.size()),
            {}};
}

StepResult AskSignedIn(SessionState& state) {
    const bool signedIn = state.service->IsZmsSignIn();
    return {signedIn, signedIn ? "somebody is signed in" : "nobody is signed in", {}};
}

}  // namespace

std::vector<Step> CreationSteps(SessionState& state) {
    return {{"service", "service created, account SDK loaded", [&state] { return CreateService(state); }}};
}

std::vector<Step> SignInSteps(SessionState& state) {
    return {
        {"account-sdk", "account SDK initialised", [&state] { return InitialiseSdk(state); }},
        {"start-send", "start-send flag in parameter store", [&state] { return CheckStartSend(state); }},
        {"sign-in", "sign-in accepted", [&state] { return StartSignIn(state); }},
        {"authorization-code", "authorization code delivered", [&state] { return AwaitCode(state); }},
        {"request-at", "code exchanged for tokens", [&state] { return ExchangeCode(state); }},
        {"tokens", "tokens in account state", [&state] { return CheckTokens(state); }},
        {"country", "registration country", [&state] { return CheckCountry(state); }},
        {"stored-tokens", "tokens in parameter store", [&state] { return CompareStore(state); }},
        {"signed-in", "account SDK knows the session", [&state] { return AskSignedIn(state); }},
    };
}

}  // namespace host
