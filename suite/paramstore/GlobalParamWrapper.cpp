#include <mutex>
#include <utility>

#include "Logger.h"
#include "ParamStore.h"
#include "ProcessState.h"
#include "SettingsStore.h"

// What the client's modules push and read while it runs.
struct GlobalParamWrapper::State {
    // The value is copied before the lock is taken, which then guards a swap that cannot fail.
    template <typename T>
    void Set(T State::*field, T value) {
        if (suite::ProcessIsEnding()) {
            return;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        std::swap(this->*field, value);
    }
    template <typename T>
    T Get(T State::*field) const {
        if (suite::ProcessIsEnding()) {
            return T();
        }
        const std::lock_guard<std::mutex> lock(mutex);
        return this->*field;
    }

    mutable std::mutex mutex;
    std::wstring currentAt;
    std::wstring currentRt;
    std::wstring userId;
    std::wstring appAt;
    HWND__* mainWindow = nullptr;
    bool atIsExpired = false;
    bool startSend = false;
    st_UserInfo userInfo{};  // not guarded: handed out by reference
};

// Never destroyed: threads and other modules' static objects may still use it while the process ends.
GlobalParamWrapper* GlobalParamWrapper::GetInstance() {
    static GlobalParamWrapper* const instance = new GlobalParamWrapper;
    return instance;
}

GlobalParamWrapper::GlobalParamWrapper() : m_state(std::make_unique<State>()) {}

GlobalParamWrapper::~GlobalParamWrapper() = default;

bool GlobalParamWrapper::LoadConfiguration(const std::wstring& file, std::string& error) {
    return SettingsStore::Instance().Load(file, error);
}

std::wstring GlobalParamWrapper::GetPortalUrl() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::portalUrl);
}

std::wstring GlobalParamWrapper::GetGWUrl() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::gatewayUrl);
}

std::wstring GlobalParamWrapper::GetSyncServerUrl() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::syncServerUrl);
}

std::wstring GlobalParamWrapper::GetUserInformationserviceUrl() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::userInformationServiceUrl);
}

std::wstring GlobalParamWrapper::GetBasicUrl() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::basicServiceUrl);
}

std::wstring GlobalParamWrapper::GetSystemUUid() const {
    return SettingsStore::Instance().SystemUuid();
}

std::wstring GlobalParamWrapper::GetCountryCode() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::countryCode);
}

std::wstring GlobalParamWrapper::GetZvClientMode() const {
    return SettingsStore::Instance().Text(&ClientConfiguration::clientMode);
}

std::wstring GlobalParamWrapper::GetAppDataLocalPath() const {
    return SettingsStore::Instance().AppDataFolder();
}

void GlobalParamWrapper::SetMainWnd(HWND__* window) {
    m_state->Set(&State::mainWindow, window);
}

HWND__* GlobalParamWrapper::GetMainWnd() const {
    return m_state->Get(&State::mainWindow);
}

void GlobalParamWrapper::SetCurrentAt(const std::wstring& accessToken) {
    Logger::SetSecret("access token", accessToken);
    m_state->Set(&State::currentAt, accessToken);
}

std::wstring GlobalParamWrapper::GetCurrentAt() const {
    return m_state->Get(&State::currentAt);
}

void GlobalParamWrapper::SetCurrentRt(const std::wstring& refreshToken) {
    Logger::SetSecret("refresh token", refreshToken);
    m_state->Set(&State::currentRt, refreshToken);
}

std::wstring GlobalParamWrapper::GetCurrentRt() const {
    return m_state->Get(&State::currentRt);
}

void GlobalParamWrapper::SetUserID(const std::wstring& userId) {
    m_state->Set(&State::userId, userId);
}

std::wstring GlobalParamWrapper::GetUserID() const {
    return m_state->Get(&State::userId);
}

void GlobalParamWrapper::SetAppAT(const std::wstring& applicationAccessToken) {
    Logger::SetSecret("application access token", applicationAccessToken);
    m_state->Set(&State::appAt, applicationAccessToken);
}

std::wstring GlobalParamWrapper::GetAppAT() const {
    return m_state->Get(&State::appAt);
}

void GlobalParamWrapper::SetAtIsExpired(bool expired) {
    m_state->Set(&State::atIsExpired, expired);
}

bool GlobalParamWrapper::GetAtIsExpired() const {
    return m_state->Get(&State::atIsExpired);
}

void GlobalParamWrapper::SetStartSend(bool start) {
    m_state->Set(&State::startSend, start);
}

bool GlobalParamWrapper::GetStartSend() const {
    return m_state->Get(&State::startSend);
}

st_UserInfo& GlobalParamWrapper::GetUserInfo() {
    return m_state->userInfo;
}
