#pragma once

#include <string>

namespace userauth {

// The account brand id in decimal, for the client's modules. Written under the account-state lock.
extern std::string g_accountBrandText;

}  // namespace userauth
