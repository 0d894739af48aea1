#include <Logger.h>
#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include "platform/PlatformUrlForSdk.h"
#include "steps/SignInOutcome.h"
#include "steps/Steps.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr std::chrono::seconds kLongestSignIn{15};

// Codes of the sandbox's SDK; another one's are its own business.
constexpr int kSdkConfigurationMissing = 101;
constexpr int kSdkConfigurationInvalid = 102;

std::string MeaningOf(int sdkCode) {
    switch (sdkCode) {
        case 0:
            return "";
        case static_cast<int>(ZvIdErrorType::kEntryPointMissing):
            return ", it lacks the entry point";
        case kSdkConfigurationMissing:
            return ", with the sandbox's SDK: no platform given and no readable ZMSCoreConfig.json beside "
                   "ZVAccountSdk.dll";
        case kSdkConfigurationInvalid:
            return ", with the sandbox's SDK: the platform is no http URL, or \"client_id\" (nine digits) or "
                   "\"platform_url\" in ZMSCoreConfig.json is missing or malformed";
        default:
            return ", a code of its own";
    }
}

StepResult SdkResult(const char* operation, int code) {
    return {code == 0, std::string(operation) + ": account SDK returned " + std::to_string(code) + MeaningOf(code)};
}

std::string SdkPlatformUrl(const SessionState& state) {
    if (state.sandbox) {
        return state.sandbox->Address().http;
    }
    return state.options.sdkPlatformUrl.empty() ? state.platformUrl : state.options.sdkPlatformUrl;
}

StepResult ConfigureSdk(SessionState& state) {
    const std::string url = SdkPlatformUrl(state);
    // The sandbox's SDK speaks http only, and what another one wants is its own business.
    if (state.options.sdkPlatformUrl.empty() && url.rfind("https://", 0) == 0) {
        SetPlatformUrlForSdk("");
        return {true, "by its own file, since the platform is https: --sdk-platform URL names another URL"};
    }
    SetPlatformUrlForSdk(url);
    return {true, "platform " + url};
}

StepResult InitialiseSdk(SessionState& state) {
    const int code = state.service->InitZms(&OnAccountNotification);
    state.sdkInitialised = code == 0;
    StepResult result = SdkResult("InitZms", code);
    const bool startSend = GlobalParamWrapper::GetInstance()->GetStartSend();
    result.ok = result.ok && startSend;
    result.detail += std::string(", start-send flag ") + (startSend ? "set" : "not set");
    return result;
}

StepResult StartSignIn(SessionState& state) {
    ForgetSignInOutcome();
    return SdkResult("ZmsSignIn", static_cast<int>(state.service->ZmsSignIn()));
}

StepResult AwaitCode(SessionState& state) {
    const std::optional<SignInOutcome> outcome = WaitForSignInOutcome(kLongestSignIn);
    if (!outcome) {
        return {false, "the account SDK did not call back within 15 s"};
    }
    if (!outcome->succeeded) {
        return {false, outcome->reason};
    }
    state.authorizationCode = outcome->authorizationCode;
    Logger::SetSecret("authorization code", ToWide(state.authorizationCode));
    const std::string threads = "callback on thread " + std::to_string(outcome->threadId) + ", caller on thread " +
                                std::to_string(GetCurrentThreadId());
    return {outcome->threadId != GetCurrentThreadId(), Characters(state.authorizationCode.size()) + ", " + threads};
}

StepResult ExchangeCode(SessionState& state) {
    const std::string code = std::exchange(state.authorizationCode, std::string());
    const bool exchanged = state.service->RequestAT(code, code.c_str());
    return {exchanged, exchanged ? "" : SeeLog("RequestAT refused")};
}

// In the account state and in the parameter store.
StepResult CheckTokens(SessionState& state) {
    UserAuthService& service = *state.service;
    const GlobalParamWrapper& store = *GlobalParamWrapper::GetInstance();
    const std::wstring accessToken = service.GetCurrentAT();
    const std::wstring refreshToken = service.GetCurrentRT();
    const std::string country = service.GetCountryCode();
    const bool there = !accessToken.empty() && !refreshToken.empty() && !country.empty();
    const bool stored = store.GetCurrentAt() == accessToken && store.GetCurrentRt() == refreshToken;
    return {there && stored && ToWide(country) == service.GetCurrentCountryCode(),
            stored ? "the same in the parameter store" : "other ones in the parameter store",
            {
                {"access token", LengthOnly(accessToken)},
                {"refresh token", LengthOnly(refreshToken)},
                {"registration country", country.empty() ? "none" : country},
            }};
}

StepResult AskSignedIn(SessionState& state) {
    const bool signedIn = state.service->IsZmsSignIn();
    return {signedIn, signedIn ? "somebody is signed in" : "nobody is signed in"};
}

}  // namespace

std::vector<Step> SignInSteps() {
    return {
        {"sdk-configuration", "account SDK configured", ConfigureSdk},
        {"account-sdk", "account SDK initialised", InitialiseSdk},
        {"sign-in", "sign-in accepted", StartSignIn},
        {"authorization-code", "authorization code delivered", AwaitCode},
        {"request-at", "code exchanged for tokens", ExchangeCode},
        {"tokens", "tokens in account state", CheckTokens},
        {"signed-in", "account SDK knows the session", AskSignedIn},
    };
}

}  // namespace host
