#pragma once

#include "UserAuthService.h"

// The one door to the service's private operations.
class UserAuthServiceAccess {
public:
    static std::string Authorization(UserAuthService& service) { return service.GetAuthorizationContents(); }
};

namespace bench {

inline UserAuthService& Service() {
    return *UserAuthService::GetInstance();
}

// As long as the platform's are.
inline std::wstring AccessToken(std::size_t characters = 128) {
    std::wstring token;
    while (token.size() < characters) {
        token += L"CV8kZm9yLXRoZS1iZW5jaA"[token.size() % 22];
    }
    return token;
}

}  // namespace bench
