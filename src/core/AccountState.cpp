#include <ParamStore.h>
#include <openssl/crypto.h>

#include "UserAuthService.h"
#include "core/AccountBrandText.h"
#include "core/AccountStateHold.h"
#include "core/TextEncoding.h"

using userauth::ExclusiveHold;
using userauth::SharedHold;

namespace userauth {

std::string g_accountBrandText;

}  // namespace userauth

void UserAuthService::Clear() {
    // These four are what the interface empties. Name, portrait URL, country, brand, flags, modules and key stay, and
    // the store is not told: that is up to the host.
    const ExclusiveHold hold(m_lock);
    m_strCurrentRT.clear();
    m_strCurrentAT.clear();
    m_strCurrentUserID.clear();
    m_strHeadImageLocalPath.clear();
}

const std::wstring UserAuthService::GetCurrentAT() {
    const SharedHold hold(m_lock);
    return m_strCurrentAT;
}

const std::wstring UserAuthService::GetCurrentRT() {
    const SharedHold hold(m_lock);
    return m_strCurrentRT;
}

const std::wstring UserAuthService::GetCurrentUserID() {
    const SharedHold hold(m_lock);
    return m_strCurrentUserID;
}

const std::wstring UserAuthService::GetCurrentUserName() {
    const SharedHold hold(m_lock);
    return m_strCurrentUserName;
}

const std::wstring UserAuthService::GetCurrentUserHeadImageUrl() {
    const SharedHold hold(m_lock);
    return m_strHeadImageUrl;
}

const std::wstring UserAuthService::GetCurrentUserHeadImageLocalPath() {
    const SharedHold hold(m_lock);
    return m_strHeadImageLocalPath;
}

const std::wstring UserAuthService::GetCurrentCountryCode() {
    const SharedHold hold(m_lock);
    return m_strCountryCode;
}

int UserAuthService::GetCurrentUserAccountBrandID() {
    const SharedHold hold(m_lock);
    return m_nAccountBrandID;
}

// The setters push inside the exclusive hold, so that no reader of the service sees a value that the store does not
// have yet.

void UserAuthService::SetCurrentAT(const std::wstring& accessToken) {
    const ExclusiveHold hold(m_lock);
    m_strCurrentAT = accessToken;
    GlobalParamWrapper::GetInstance()->SetCurrentAt(accessToken);
}

void UserAuthService::SetCurrentRT(const std::wstring& refreshToken) {
    const ExclusiveHold hold(m_lock);
    m_strCurrentRT = refreshToken;
    GlobalParamWrapper::GetInstance()->SetCurrentRt(refreshToken);
}

void UserAuthService::SetCurrrentUserID(const std::wstring& userId) {
    const ExclusiveHold hold(m_lock);
    m_strCurrentUserID = userId;
    GlobalParamWrapper::GetInstance()->SetUserID(userId);
}

void UserAuthService::SetCurrentUserHeadImageLocalPath(const std::wstring& path) {
    const ExclusiveHold hold(m_lock);
    m_strHeadImageLocalPath = path;
}

void UserAuthService::SetCurrentUserInfo(const std::wstring& userId, const std::wstring& userName,
                                         const std::wstring& headImageUrl, int brandId) {
    const ExclusiveHold hold(m_lock);
    m_strCurrentUserID = userId;
    m_strCurrentUserName = userName;
    m_strHeadImageUrl = headImageUrl;
    m_nAccountBrandID = brandId;
    userauth::g_accountBrandText = std::to_string(brandId);
    GlobalParamWrapper::GetInstance()->SetUserID(userId);
}

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Wignored-qualifiers"  // the const result is part of the exported signature
#endif

// Without the lock: the host reads these after the operation that wrote them has returned (UserAuthService.h).

std::string UserAuthService::GetCountryCode() {
    return userauth::WideToMultiByte(m_strCountryCode, userauth::kUtf8CodePage);
}

std::string UserAuthService::GetLanguageType() const {
    return m_strLanguageType;
}
bool UserAuthService::GetCurrentPriviledge() {
    return m_bPriviledge;
}
const bool UserAuthService::GetClientLogReportStatus() {
    return m_bClientLogReport;
}
bool UserAuthService::IsActiveAccount() {
    return m_bActiveAccount;
}
bool UserAuthService::IsAvailableCountry() {
    return m_bAvailableCountry;
}
std::vector<std::wstring> UserAuthService::GetValidModule() {
    return m_vecValidModules;
}

void UserAuthService::SetRealUserKey(std::vector<std::uint8_t> key) {
    m_vecRealUserKey.swap(key);  // needs no memory: the stored key is never lost
    OPENSSL_cleanse(key.data(), key.size());
}

std::vector<std::uint8_t> UserAuthService::GetRealUserKey() {
    return m_vecRealUserKey;
}

GlobalParamWrapper* UserAuthService::GetGPWPtr() {
    return GlobalParamWrapper::GetInstance();
}
