#pragma once

// Values that belong to one deployment of the client. This file is the only place to change them; the hosts stand on
// reserved example domains until a deployment sets its own.
namespace userauth {

// The client's numeric id at the account platform, nine decimal digits: sent at sign-in, in the authorization text and
// to the basic service, and written into the account SDK's configuration.
inline constexpr wchar_t kApplicationId[] = L"104862915";

// "Host" header of the account servers: the account web front end.
inline constexpr wchar_t kAccountWebHost[] = L"account.example.com";

// The second "Host" of the device header set. Never reaches a server: the first value of a name stays.
inline constexpr wchar_t kAccountTestHost[] = L"account-test.example.com";

// Prefix of every sign-in scope but "openid".
#define USERAUTH_SCOPE_HOST "https://www.example.com"

}  // namespace userauth
