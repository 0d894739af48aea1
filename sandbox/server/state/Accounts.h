#pragma once

#include <string>
#include <vector>

namespace sandbox {

// An account that the platform knows. Texts are UTF-8.
struct Account {
    std::string userId;
    std::string displayName;
    std::string countryCode;  // of the registration
    int brand = 0;
    std::string photoName;  // on the photo host; empty: no photo
    bool clientLogReport = false;
    std::string languageType;
    bool privilege = false;
    bool active = false;  // in the basic service, at start
};

// The accounts of the platform; the first is the current one at start.
std::vector<Account> KnownAccounts();

}  // namespace sandbox
