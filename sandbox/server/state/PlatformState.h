#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "state/Accounts.h"

namespace sandbox {

// What a good authorization code is exchanged for.
struct TokenGrant {
    std::string accessToken;
    std::string refreshToken;
    std::string countryCode;
    std::chrono::seconds lifetime{};
};

struct CodeExchange {
    std::optional<TokenGrant> grant;
    std::string refusal;  // why there is no grant
};

// Who the client says it is when it refreshes.
struct RefreshClaim {
    std::string deviceId;
    std::string userId;  // empty when the client does not know it
};

struct RefreshExchange {
    std::optional<std::string> accessToken;
    std::string refusal;  // why there is no access token
    // Set when the refresh token is valid but was issued to somebody else: which member of the claim differs,
    // "deviceId" or "userId".
    const char* wrongClaim = nullptr;
};

struct TokenCheck {
    std::optional<Account> account;  // the one that the token was issued to
    std::string refusal;             // why the token is not valid
};

struct SignInGrant {
    std::string code;
    std::string userId;
};

// Texts are empty while nobody is signed in.
struct Session {
    bool signedIn = false;
    std::string userId;
    std::string displayName;
};

struct PlatformOverview {
    Session session;
    std::string currentUserId;
    std::chrono::seconds clockAhead{};
    std::size_t accessTokens = 0;  // of the current account, and valid
    std::size_t refreshTokens = 0;
};

enum class TokenKind { kAccess, kRefresh };

inline constexpr std::chrono::hours kLongestAdvance{24 * 3650};

// Accounts, the device's session, codes and tokens of the platform. All operations may be called from any thread.
class PlatformState {
public:
    // Signs the current account in on the device and issues a code for it, good for one exchange within five minutes.
    SignInGrant SignIn();
    // Makes that account the current one and signs it in; nothing when no account has that user id.
    std::optional<SignInGrant> SignIn(const std::string& userId);
    void SignOut();
    Session CurrentSession() const;
    // The account that signs in next, whether or not somebody is signed in now.
    Account CurrentAccount() const;
    // Makes another account the current one; false when no account has that user id.
    bool SelectAccount(const std::string& userId);
    const std::vector<Account>& Accounts() const { return m_accounts; }

    // The refresh token is bound to the device that exchanges the code.
    CodeExchange ExchangeCode(const std::string& code, const std::string& deviceId);
    // A further access token; earlier ones of the account stay valid until they expire.
    RefreshExchange Refresh(const std::string& refreshToken, const RefreshClaim& claim);
    TokenCheck CheckAccessToken(const std::string& accessToken) const;
    // Takes all valid tokens of that kind back from the current account; returns how many there were.
    std::size_t Revoke(TokenKind kind);

    // Moves the platform's clock forward, so that codes and tokens expire without waiting; false, and nothing moves,
    // when it would be more than kLongestAdvance ahead in all.
    bool AdvanceClock(std::chrono::seconds by);

    PlatformOverview Overview() const;
    // Everything as at start: every code and token is unknown from now on.
    void Reset();

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Code {
        std::size_t account = 0;
        Time expiry;
        bool used = false;
    };
    struct Token {
        std::size_t account = 0;
        Time expiry;
        std::string deviceId;  // of a refresh token
    };
    using Tokens = std::map<std::string, Token>;

    // The following expect the lock to be held.
    Time Now() const;
    SignInGrant SignInCurrent(std::string code);
    Session SessionNow() const;
    bool Select(const std::string& userId);
    std::size_t CountValid(const Tokens& tokens) const;
    void ForgetOldEntries();
    std::string IssueAccessToken(std::size_t account);
    // Why the token is not valid; empty when it is, and then it is one of tokens.
    std::string TokenFault(const Tokens& tokens, const std::string& token) const;

    const std::vector<Account> m_accounts = KnownAccounts();
    mutable std::mutex m_lock;  // guards everything below
    std::size_t m_current = 0;
    bool m_signedIn = false;
    std::map<std::string, Code> m_codes;
    Tokens m_accessTokens;
    Tokens m_refreshTokens;
    std::chrono::seconds m_clockOffset{};
};

}  // namespace sandbox
