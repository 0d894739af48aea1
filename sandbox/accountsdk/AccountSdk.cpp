#include "AccountSdk.h"

#include <new>
#include <utility>

#include "../SignInContract.h"
#include "JsonText.h"
#include "PlatformClient.h"

namespace accountsdk {
namespace {

// Each must match byte for byte; an application id that the SDK was not told is the platform's to judge.
Code CheckSignInArguments(const SignInArguments& arguments, const std::string& clientId) {
    if (!clientId.empty() && arguments.applicationId != clientId) {
        return kWrongApplicationId;
    }
    if (arguments.scopes != sandbox::kSignInScopes) {
        return kWrongScopes;
    }
    return arguments.location == sandbox::kSignInLocation ? kOk : kWrongLocation;
}

}  // namespace

AccountSdk& AccountSdk::Instance() {
    // Never destroyed: at process exit the system has killed a running sign-in anywhere, perhaps inside these members.
    // Not on the heap: its room goes with the library when that is unloaded.
    alignas(AccountSdk) static unsigned char room[sizeof(AccountSdk)];
    static AccountSdk* const instance = new (room) AccountSdk;
    return *instance;
}

Code AccountSdk::Init() {
    SdkConfiguration read;
    const Code code = LoadSdkConfiguration(read);
    auto configuration = code == kOk ? std::make_unique<const SdkConfiguration>(std::move(read)) : nullptr;
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_configuration = std::move(configuration);
    m_lastInit = code;
    return code;
}

Code AccountSdk::Uninit() {
    Code lastInit = kOk;
    {  // only the copies, not the wait, under the lock
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_configuration.reset();
        m_callback = nullptr;
        lastInit = std::exchange(m_lastInit, kNotInitialised);
    }
    const bool ended = m_signIns.CancelAndWait();
    return lastInit != kOk || ended ? lastInit : kUninitTimedOut;
}

Code AccountSdk::RegisterNotifyFunction(NotifyCallback callback) {
    if (!callback) {
        return kArgumentMissing;
    }
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_configuration) {
        return kNotInitialised;
    }
    m_callback = callback;
    return kOk;
}

Code AccountSdk::SignIn(const char* applicationId, const char* scopes, const char* location) {
    if (!applicationId || !scopes || !location) {
        return kArgumentMissing;
    }
    SignInArguments arguments{applicationId, scopes, location};
    // Held until the thread is counted, so that an Uninit at the same moment either refuses it or waits for it.
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_configuration) {
        return kNotInitialised;
    }
    const Code check = CheckSignInArguments(arguments, m_configuration->clientId);
    if (check != kOk) {
        return check;
    }
    if (!m_callback) {
        return kNoCallback;
    }
    return m_signIns.Start(*m_configuration, std::move(arguments), m_callback) ? kOk : kThreadNotStarted;
}

Code AccountSdk::HasAccountChanged(const char* userId) {
    if (!userId) {
        return kArgumentMissing;
    }
    const auto configuration = CopyConfiguration();
    if (!configuration) {
        return kNotInitialised;
    }
    const SessionReply session = PlatformClient(configuration->platform).CurrentSession();
    if (session.code != kOk) {
        return session.code;
    }
    return session.userId == userId ? kOk : kAccountChanged;
}

Code AccountSdk::IsAccountLoggedIn() {
    const auto configuration = CopyConfiguration();
    return configuration ? PlatformClient(configuration->platform).CurrentSession().code : kNotInitialised;
}

Code AccountSdk::OpenAccountCenter() {
    return IsAccountLoggedIn();
}

Code AccountSdk::SetLogoutEnable(const char* entryJson) {
    if (!entryJson) {
        return kArgumentMissing;
    }
    const Json::Value entry = ParseObject(entryJson);
    const bool valid = entry.isObject() && entry["name"].isString() && entry["description"].isString();
    return valid ? kOk : kLogoutEntryInvalid;
}

const char* AccountSdk::OAuthDomain() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_configuration ? m_configuration->platform.text.c_str() : "";
}

std::unique_ptr<const SdkConfiguration> AccountSdk::CopyConfiguration() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_configuration ? std::make_unique<const SdkConfiguration>(*m_configuration) : nullptr;
}

}  // namespace accountsdk
