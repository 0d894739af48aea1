#pragma once

namespace userauth {

// Values that belong to one deployment of the client. This library takes them from here only. The hosts stand on
// reserved example domains until a deployment sets its own. A deployment that changes the application id changes it in
// the account SDK's own configuration file too.

// The client's numeric id at the account platform, nine decimal digits: sent at sign-in, in the authorization text and
// to the basic service, and written into the account SDK's configuration.
inline constexpr wchar_t kApplicationId[] = L"104862915";

// "Host" header of the account servers: the account web front end.
inline constexpr wchar_t kAccountWebHost[] = L"account.example.com";

// The second "Host" of the device header set. Never reaches a server: the first value of a name stays.
inline constexpr wchar_t kAccountTestHost[] = L"account-test.example.com";

// Prefix of every sign-in scope but "openid".
#define USERAUTH_SCOPE_HOST "https://www.example.com"

// What this client calls itself towards the account servers.
inline constexpr wchar_t kProductTag[] = L"NimbaPC";
inline constexpr wchar_t kClientVersion[] = L"11.2.4.301";
inline constexpr char kPackageName[] = "com.zorvan.cloud.pc";
inline constexpr wchar_t kDeviceType[] = L"6";
inline constexpr wchar_t kTerminal[] = L"PC";
inline constexpr wchar_t kAuthorizationVersion[] = L"1";
inline constexpr wchar_t kOsBrand[] = L"Windows";

}  // namespace userauth
