#include <mutex>
#include <utility>

#include "Logger.h"
#include "ParamStore.h"
#include "ProcessState.h"
#include "SettingRules.h"
#include "SettingsStore.h"

namespace suite {
namespace {

// What the client's modules push and read while it runs.
struct PushedValues {
    // The value is copied before the lock is taken, which then guards a swap that cannot fail.
    template <typename T>
    void Set(T PushedValues::*field, T value) {
        if (ProcessIsEnding()) {
            return;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        std::swap(this->*field, value);
    }
    template <typename T>
    T Get(T PushedValues::*field) const {
        if (ProcessIsEnding()) {
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

std::wstring Setting(std::wstring ClientConfiguration::*member) {
    return SettingsStore::Instance().Text(member);
}

// The logger knows a token before a line can hold it. Copied first, so that nothing fails between the two: the logger
// would have forgotten the token that the store has kept.
void SetToken(PushedValues& values, const char* name, std::wstring PushedValues::*field, std::wstring token) {
    Logger::SetSecret(name, token);
    values.Set(field, std::move(token));
}

}  // namespace
}  // namespace suite

using suite::ClientConfiguration;
using suite::ConfigurationText;
using suite::Setting;
using suite::SettingsStore;

struct GlobalParamWrapper::State : suite::PushedValues {};

// Never destroyed: threads and other modules' static objects may still use it while the process ends.
GlobalParamWrapper* GlobalParamWrapper::GetInstance() {
    static GlobalParamWrapper* const instance = new GlobalParamWrapper;
    return instance;
}

GlobalParamWrapper::GlobalParamWrapper() : m_state(std::make_unique<State>()) {}

GlobalParamWrapper::~GlobalParamWrapper() = default;

bool GlobalParamWrapper::LoadConfiguration(const std::wstring& file, std::string& error) {
    return SettingsStore::Instance().Load(ConfigurationText::InFile(file), error);
}

bool GlobalParamWrapper::LoadConfigurationText(const std::string& json, std::string& error) {
    return SettingsStore::Instance().Load(ConfigurationText::InMemory(json), error);
}

std::string GlobalParamWrapper::BaseUrlFault(const std::string& url) {
    const char* const fault = suite::CheckBaseUrl(url);
    return fault != nullptr ? fault : "";
}

std::wstring GlobalParamWrapper::GetPortalUrl() const {
    return Setting(&ClientConfiguration::portalUrl);
}

std::wstring GlobalParamWrapper::GetGWUrl() const {
    return Setting(&ClientConfiguration::gatewayUrl);
}

std::wstring GlobalParamWrapper::GetSyncServerUrl() const {
    return Setting(&ClientConfiguration::syncServerUrl);
}

std::wstring GlobalParamWrapper::GetUserInformationserviceUrl() const {
    return Setting(&ClientConfiguration::userInformationServiceUrl);
}

std::wstring GlobalParamWrapper::GetBasicUrl() const {
    return Setting(&ClientConfiguration::basicServiceUrl);
}

std::wstring GlobalParamWrapper::GetSystemUUid() const {
    return SettingsStore::Instance().SystemUuid().uuid;
}

std::string GlobalParamWrapper::GetSystemUUidFault() const {
    return SettingsStore::Instance().SystemUuid().fault;
}

std::wstring GlobalParamWrapper::GetCountryCode() const {
    return Setting(&ClientConfiguration::countryCode);
}

std::wstring GlobalParamWrapper::GetZvClientMode() const {
    return Setting(&ClientConfiguration::clientMode);
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
    suite::SetToken(*m_state, "access token", &State::currentAt, accessToken);
}

std::wstring GlobalParamWrapper::GetCurrentAt() const {
    return m_state->Get(&State::currentAt);
}

void GlobalParamWrapper::SetCurrentRt(const std::wstring& refreshToken) {
    suite::SetToken(*m_state, "refresh token", &State::currentRt, refreshToken);
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
    suite::SetToken(*m_state, "application access token", &State::appAt, applicationAccessToken);
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

ConfigEntityManager* ConfigEntityManager::GetInstance() {
    static ConfigEntityManager instance;
    return &instance;
}

std::wstring ConfigEntityManager::GetConfigContentDatas(ConfigEntityEnum item) const {
    return SettingsStore::Instance().LegacyItem(static_cast<int>(item));
}
