#pragma once

namespace userauth {

// What this client calls itself towards the account servers.
inline constexpr char kProductTag[] = "NimbaPC";
inline constexpr char kClientVersion[] = "11.2.4.301";
inline constexpr char kPackageName[] = "com.zorvan.cloud.pc";
inline constexpr wchar_t kDeviceType[] = L"6";
inline constexpr wchar_t kTerminal[] = L"PC";
inline constexpr wchar_t kAuthorizationVersion[] = L"1";
inline constexpr wchar_t kOsBrand[] = L"Windows";

}  // namespace userauth
