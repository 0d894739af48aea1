#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sandbox {

// An account that the platform knows. Texts are UTF-8.
struct Account {
    std::string userId;
    std::string displayName;
    std::string countryCode;
};

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

struct SignInGrant {
    std::string code;
    std::string userId;
};

struct Session {
    bool signedIn = false;
    std::string userId;  // empty while nobody is signed in
};

// Accounts, the device's session, codes and tokens of the platform. All operations may be called from any thread.
class PlatformState {
public:
    PlatformState();

    // Signs the current account in on the device and issues a code for it, good for one exchange within five minutes.
    SignInGrant SignIn();
    void SignOut();
    Session CurrentSession() const;
    // Makes another account the current one; false when no account has that user id.
    bool SelectAccount(const std::string& userId);

    CodeExchange ExchangeCode(const std::string& code);

    // Moves the platform's clock forward, so that codes and tokens expire without waiting.
    void AdvanceClock(std::chrono::seconds by);

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
    };

    // The following expect the lock to be held.
    Time Now() const;
    void ForgetOldEntries();
    TokenGrant IssueTokens(std::size_t account);

    mutable std::mutex m_lock;  // guards everything below
    std::vector<Account> m_accounts;
    std::size_t m_current = 0;
    bool m_signedIn = false;
    std::map<std::string, Code> m_codes;
    std::map<std::string, Token> m_accessTokens;
    std::map<std::string, Token> m_refreshTokens;
    std::chrono::seconds m_clockOffset{};
};

}  // namespace sandbox
