#pragma once

#include <string_view>

// What the account platform and its SDK both expect of a client's sign-in.
namespace sandbox {

// The order counts, and every scope is followed by one blank, the last one too.
inline constexpr std::string_view kSignInScopes =
    "https://www.example.com/auth/account/base.profile "
    "https://www.example.com/auth/account/devicelist "
    "https://www.example.com/auth/drive "
    "https://www.example.com/auth/cloudphoto "
    "openid "
    "https://www.example.com/auth/account/country "
    "https://www.example.com/auth/cloudbackup "
    "https://www.example.com/auth/drive/extension "
    "https://www.example.com/auth/clouddatasync "
    "https://www.example.com/auth/account/account.flags "
    "https://www.example.com/auth/account/realname/state ";

// Clients send no position, and leave the values out. So this is not valid JSON; both sides compare it byte by byte.
inline constexpr std::string_view kSignInLocation = R"({"LocationX":,"LocationY":})";

}  // namespace sandbox
