#include <Logger.h>
#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include <condition_variable>
#include <mutex>
#include <optional>

#include "steps/Steps.h"
#include "system/Interruption.h"
#include "text/FieldText.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr std::chrono::seconds kLongestSignIn{15};
constexpr std::chrono::seconds kLongestPersonSignIn{330};  // longer than the sandbox waits for a person
constexpr std::chrono::milliseconds kInterruptionCheck{200};
// Environment variable with the platform's URL. The sandbox's SDK reads it when it is initialised, before its file.
// Another SDK does not know it.
constexpr wchar_t kPlatformVariable[] = L"ZVACCOUNTSDK_PLATFORM_URL";
// Likewise: "browser" lets a person sign in on the sandbox's page, "wait" too, without a browser being started.
constexpr wchar_t kInteractiveVariable[] = L"ZVACCOUNTSDK_INTERACTIVE";

// Codes of the sandbox's SDK. Another SDK has codes of its own.
constexpr int kSdkConfigurationMissing = 101;
constexpr int kSdkConfigurationInvalid = 102;

// What the account SDK reported through the notification callback.
struct SignInOutcome {
    bool succeeded = false;
    std::string authorizationCode;  // when it succeeded; a secret until it is used
    std::string reason;             // when it failed
    unsigned long threadId = 0;     // the thread that the callback ran on
};

// The last outcome of a sign-in waits here. There is one mailbox a process, since the callback has no context.
struct Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::optional<SignInOutcome> outcome;
};

Mailbox& TheMailbox() {
    // Never destroyed: the SDK may call back until the process is gone.
    static Mailbox* const mailbox = new Mailbox;
    return *mailbox;
}

// The callback to register. Any thread.
void OnAccountNotification(MessageType type, char* first, char* second) {
    SignInOutcome outcome;
    outcome.threadId = GetCurrentThreadId();
    if (type == MessageType::kSignInSucceeded) {
        outcome.succeeded = true;
        outcome.authorizationCode = first;
    } else if (type == MessageType::kSignInFailed) {
        outcome.reason = "account SDK code " + std::string(first) + ": " + second;
    } else {
        return;  // no outcome of a sign-in
    }
    Mailbox& mailbox = TheMailbox();
    const std::lock_guard<std::mutex> guard(mailbox.mutex);
    mailbox.outcome = std::move(outcome);
    mailbox.arrived.notify_all();
}

// Waits for an outcome and takes it out of the mailbox; nothing when the time ran out or Ctrl-C came.
std::optional<SignInOutcome> WaitForSignInOutcome(std::chrono::milliseconds longest) {
    Mailbox& mailbox = TheMailbox();
    std::unique_lock<std::mutex> lock(mailbox.mutex);
    const auto end = std::chrono::steady_clock::now() + longest;
    while (!mailbox.outcome && !Interrupted() && std::chrono::steady_clock::now() < end) {
        mailbox.arrived.wait_for(lock, kInterruptionCheck);
    }
    return std::exchange(mailbox.outcome, std::nullopt);
}

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
    // A value that is there stays: it may say that the browser is somebody else's business.
    if (state.options.interactive && GetEnvironmentVariableW(kInteractiveVariable, nullptr, 0) == 0) {
        SetEnvironmentVariableW(kInteractiveVariable, L"browser");
    }
    const std::string url = SdkPlatformUrl(state);
    // The sandbox's SDK speaks http only. Another SDK is configured by its own file.
    if (state.options.sdkPlatformUrl.empty() && AsciiLower(url).rfind("https://", 0) == 0) {
        SetEnvironmentVariableW(kPlatformVariable, nullptr);
        return {true, "by its own file, since the platform is https: --sdk-platform URL names another URL"};
    }
    SetEnvironmentVariableW(kPlatformVariable, ToWide(url).c_str());
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
    WaitForSignInOutcome({});  // an earlier one goes
    StepResult result = SdkResult("ZmsSignIn", static_cast<int>(state.service->ZmsSignIn()));
    if (result.ok && state.options.interactive) {
        result.detail += "; a person has 5 minutes to sign in on the page that opens in the browser, or that " +
                         SdkPlatformUrl(state) + "/ links to";
    }
    return result;
}

StepResult AwaitCode(SessionState& state) {
    const std::chrono::seconds longest = state.options.interactive ? kLongestPersonSignIn : kLongestSignIn;
    const std::optional<SignInOutcome> outcome = WaitForSignInOutcome(longest);
    if (!outcome) {
        return {false, "the account SDK did not call back within " + std::to_string(longest.count()) + " s"};
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

// The tokens are in the account state, and the same in the parameter store.
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
