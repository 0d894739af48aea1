#include "PlatformState.h"

#include <algorithm>

#include "RandomText.h"

namespace sandbox {
namespace {

constexpr std::chrono::minutes kCodeLifetime{5};
constexpr std::chrono::hours kCodeMemory{1};  // how long an expired code is still told from an unknown one
constexpr std::chrono::seconds kAccessTokenLifetime{3600};
constexpr std::chrono::hours kRefreshTokenLifetime{24 * 180};
constexpr std::chrono::hours kLongestAdvance{24 * 3650};

template <typename Entries, typename Time>
void EraseExpired(Entries& entries, Time before) {
    for (auto entry = entries.begin(); entry != entries.end();) {
        entry = entry->second.expiry < before ? entries.erase(entry) : std::next(entry);
    }
}

}  // namespace

PlatformState::PlatformState()
    : m_accounts{{"260086000100000001", "Sandbox User", "CN"},
                 {"260086000100000002", "Zo\xC3\xAB \xE7\x8E\x8B\xE8\x8A\xB3", "DE"}} {}

SignInGrant PlatformState::SignIn() {
    auto code = RandomCode();
    const std::lock_guard<std::mutex> guard(m_lock);
    ForgetOldEntries();
    m_codes[code] = {m_current, Now() + kCodeLifetime, false};
    m_signedIn = true;
    return {std::move(code), m_accounts[m_current].userId};
}

void PlatformState::SignOut() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_signedIn = false;
}

Session PlatformState::CurrentSession() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return {m_signedIn, m_signedIn ? m_accounts[m_current].userId : std::string()};
}

bool PlatformState::SelectAccount(const std::string& userId) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(),
                                    [&](const Account& account) { return account.userId == userId; });
    if (found == m_accounts.end()) {
        return false;
    }
    m_current = static_cast<std::size_t>(found - m_accounts.begin());
    return true;
}

CodeExchange PlatformState::ExchangeCode(const std::string& code) {
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
    return {IssueTokens(found->second.account), {}};
}

void PlatformState::AdvanceClock(std::chrono::seconds by) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_clockOffset = std::min<std::chrono::seconds>(m_clockOffset + by, kLongestAdvance);
}

PlatformState::Time PlatformState::Now() const {
    return std::chrono::steady_clock::now() + m_clockOffset;
}

void PlatformState::ForgetOldEntries() {
    EraseExpired(m_codes, Now() - kCodeMemory);
    EraseExpired(m_accessTokens, Now());
    EraseExpired(m_refreshTokens, Now());
}

TokenGrant PlatformState::IssueTokens(std::size_t account) {
    TokenGrant grant{RandomToken(), RandomToken(), m_accounts[account].countryCode, kAccessTokenLifetime};
    m_accessTokens[grant.accessToken] = {account, Now() + grant.lifetime};
    m_refreshTokens[grant.refreshToken] = {account, Now() + kRefreshTokenLifetime};
    return grant;
}

}  // namespace sandbox
