#include "state/PlatformState.h"

#include <algorithm>

#include "crypto/RandomText.h"

namespace sandbox {
namespace {

constexpr std::chrono::minutes kCodeLifetime{5};
constexpr std::chrono::hours kMemory{1};  // how long an expired code or token is still told from an unknown one
constexpr std::chrono::seconds kAccessTokenLifetime{3600};
constexpr std::chrono::hours kRefreshTokenLifetime{24 * 180};

template <typename Entries, typename Time>
void EraseExpired(Entries& entries, Time before) {
    for (auto entry = entries.begin(); entry != entries.end();) {
        entry = entry->second.expiry < before ? entries.erase(entry) : std::next(entry);
    }
}

}  // namespace

SignInGrant PlatformState::SignIn() {
    auto code = RandomCode();
    const std::lock_guard<std::mutex> guard(m_lock);
    return SignInCurrent(std::move(code));
}

std::optional<SignInGrant> PlatformState::SignIn(const std::string& userId) {
    auto code = RandomCode();
    const std::lock_guard<std::mutex> guard(m_lock);
    return Select(userId) ? std::optional(SignInCurrent(std::move(code))) : std::nullopt;
}

void PlatformState::SignOut() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_signedIn = false;
}

Session PlatformState::CurrentSession() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return SessionNow();
}

Account PlatformState::CurrentAccount() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_accounts[m_current];
}

bool PlatformState::SelectAccount(const std::string& userId) {
    const std::lock_guard<std::mutex> guard(m_lock);
    return Select(userId);
}

CodeExchange PlatformState::ExchangeCode(const std::string& code, const std::string& deviceId) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_codes.find(code);
    if (found == m_codes.end()) {
        return {std::nullopt, "the authorization code is not known"};
    }
    if (found->second.used) {
        return {std::nullopt, "the authorization code was used before"};
    }
    if (found->second.expiry < Now()) {
        return {std::nullopt, "the authorization code has expired"};
    }
    found->second.used = true;
    const auto account = found->second.account;
    TokenGrant grant{IssueAccessToken(account), RandomToken(), m_accounts[account].countryCode, kAccessTokenLifetime};
    m_refreshTokens[grant.refreshToken] = {account, Now() + kRefreshTokenLifetime, deviceId};
    return {std::move(grant), {}};
}

RefreshExchange PlatformState::Refresh(const std::string& refreshToken, const RefreshClaim& claim) {
    const std::lock_guard<std::mutex> guard(m_lock);
    ForgetOldEntries();
    if (auto fault = TokenFault(m_refreshTokens, refreshToken); !fault.empty()) {
        return {std::nullopt, "the refresh token " + fault};
    }
    const auto& token = m_refreshTokens.at(refreshToken);
    if (token.deviceId != claim.deviceId) {
        return {std::nullopt, "the refresh token was issued to another device", "deviceId"};
    }
    if (!claim.userId.empty() && m_accounts[token.account].userId != claim.userId) {
        return {std::nullopt, "the refresh token was issued to another user", "userId"};
    }
    return {IssueAccessToken(token.account), {}};
}

TokenCheck PlatformState::CheckAccessToken(const std::string& accessToken) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (auto fault = TokenFault(m_accessTokens, accessToken); !fault.empty()) {
        return {std::nullopt, "the access token " + fault};
    }
    return {m_accounts[m_accessTokens.at(accessToken).account], {}};
}

std::size_t PlatformState::Revoke(TokenKind kind) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto& tokens = kind == TokenKind::kAccess ? m_accessTokens : m_refreshTokens;
    std::size_t revoked = 0;
    for (auto token = tokens.begin(); token != tokens.end();) {
        const bool hit = token->second.account == m_current && Now() < token->second.expiry;
        revoked += hit ? 1 : 0;
        token = hit ? tokens.erase(token) : std::next(token);
    }
    return revoked;
}

bool PlatformState::AdvanceClock(std::chrono::seconds by) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (by > kLongestAdvance - m_clockOffset) {
        return false;
    }
    m_clockOffset += by;
    return true;
}

PlatformOverview PlatformState::Overview() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return {SessionNow(), m_accounts[m_current].userId, m_clockOffset, CountValid(m_accessTokens),
            CountValid(m_refreshTokens)};
}

void PlatformState::Reset() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_current = 0;
    m_signedIn = false;
    m_codes.clear();
    m_accessTokens.clear();
    m_refreshTokens.clear();
    m_clockOffset = {};
}

PlatformState::Time PlatformState::Now() const {
    return std::chrono::steady_clock::now() + m_clockOffset;
}

SignInGrant PlatformState::SignInCurrent(std::string code) {
    ForgetOldEntries();
    m_codes[code] = {m_current, Now() + kCodeLifetime, false};
    m_signedIn = true;
    return {std::move(code), m_accounts[m_current].userId};
}

Session PlatformState::SessionNow() const {
    return m_signedIn ? Session{true, m_accounts[m_current].userId, m_accounts[m_current].displayName} : Session();
}

bool PlatformState::Select(const std::string& userId) {
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(),
                                    [&](const Account& account) { return account.userId == userId; });
    if (found == m_accounts.end()) {
        return false;
    }
    m_current = static_cast<std::size_t>(found - m_accounts.begin());
    return true;
}

std::size_t PlatformState::CountValid(const Tokens& tokens) const {
    return static_cast<std::size_t>(std::count_if(tokens.begin(), tokens.end(), [this](const auto& token) {
        return token.second.account == m_current && Now() < token.second.expiry;
    }));
}

void PlatformState::ForgetOldEntries() {
    EraseExpired(m_codes, Now() - kMemory);
    EraseExpired(m_accessTokens, Now() - kMemory);
    EraseExpired(m_refreshTokens, Now() - kMemory);
}

std::string PlatformState::IssueAccessToken(std::size_t account) {
    auto token = RandomToken();
    m_accessTokens[token] = {account, Now() + kAccessTokenLifetime, {}};
    return token;
}

std::string PlatformState::TokenFault(const Tokens& tokens, const std::string& token) const {
    const auto found = tokens.find(token);
    if (found == tokens.end()) {
        return "is not known or was revoked";
    }
    return found->second.expiry <= Now() ? "has expired" : "";
}

}  // namespace sandbox
