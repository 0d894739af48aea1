#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "state/Accounts.h"

namespace sandbox {

// What user keys are for, as clients name it: files of the drive and the photo library.
inline constexpr std::array<std::string_view, 2> kUserKeyDataTypes = {"11", "12"};

struct UserKey {
    int type = 0;
    std::string uuid;  // 32 hexadecimal digits
    std::string bytes;
};

// The keys of one account and one data type.
struct UserKeyPair {
    UserKey type1;  // 16 bytes
    UserKey type3;  // 32 bytes
};

// The keys of all accounts: random, made here, the same for as long as this lives. Read-only.
class UserKeys {
public:
    explicit UserKeys(const std::vector<Account>& accounts);
    // Throws std::out_of_range when there is no such account or data type.
    const UserKeyPair& Of(const std::string& userId, std::string_view dataType) const;

private:
    std::map<std::string, std::map<std::string, UserKeyPair, std::less<>>> m_keys;  // by user id, then by data type
};

}  // namespace sandbox
