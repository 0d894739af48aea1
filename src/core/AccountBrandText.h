#pragma once

#include <string>

namespace userauth {

// The account brand id in decimal. The interface asks for it; nothing in this library reads it. Written under the
// account-state lock.
extern std::string g_accountBrandText;

}  // namespace userauth
