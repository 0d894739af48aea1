#pragma once

#include <string>

namespace userauth {

// Undoes the system's per-user data protection (DPAPI, no entropy, no prompt). The plaintext up to its first zero byte;
// empty when the blob is not one that this user of this machine made.
std::string UnprotectForCurrentUser(const std::string& blob);

}  // namespace userauth
