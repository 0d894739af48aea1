#include <ParamStore.h>
#include <openssl/crypto.h>

#include "UserAuthService.h"
#include "core/AccountBrandText.h"
#include "core/AccountStateHold.h"
#include "core/TextEncoding.h"

namespace userauth {

std::string g_accountBrandText;

namespace {

// Stores a value and hands it to the parameter store. When either has no memory for it both keep the former one.
template <typename Push>
void StoreAndPush(std::wstring& field, std::wstring value, const Push& push) {
    field.swap(value);
    try {
        push(field);
    } catch (...) {
        field.swap(value);
        throw;
    }
}

}  // namespace
}  // namespace userauth

using userauth::ExclusiveHold;
using userauth::SharedHold;
using userauth::StoreAndPush;

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
    StoreAndPush(m_strCurrentAT, accessToken,
                 [](const std::wstring& value) { GlobalParamWrapper::GetInstance()->SetCurrentAt(value); });
}

void UserAuthService::SetCurrentRT(const std::wstring& refreshToken) {
    const ExclusiveHold hold(m_lock);
    StoreAndPush(m_strCurrentRT, refreshToken,
                 [](const std::wstring& value) { GlobalParamWrapper::GetInstance()->SetCurrentRt(value); });
}

void UserAuthService::SetCurrrentUserID(const std::wstring& userId) {
    const ExclusiveHold hold(m_lock);
    StoreAndPush(m_strCurrentUserID, userId,
                 [](const std::wstring& value) { GlobalParamWrapper::GetInstance()->SetUserID(value); });
}

void UserAuthService::SetCurrentUserHeadImageLocalPath(const std::wstring& path) {
    const ExclusiveHold hold(m_lock);
    m_strHeadImageLocalPath = path;
}

void UserAuthService::SetCurrentUserInfo(const std::wstring& userId, const std::wstring& userName,
                                         const std::wstring& headImageUrl, int brandId) {
    std::wstring name = userName;
    std::wstring url = headImageUrl;
    std::string brandText = std::to_string(brandId);
    const ExclusiveHold hold(m_lock);
    StoreAndPush(m_strCurrentUserID, userId,
                 [](const std::wstring& value) { GlobalParamWrapper::GetInstance()->SetUserID(value); });
    // Nothing fails from here on: the record is the new one as a whole.
    m_strCurrentUserName.swap(name);
    m_strHeadImageUrl.swap(url);
    m_nAccountBrandID = brandId;
    userauth::g_accountBrandText.swap(brandText);
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
