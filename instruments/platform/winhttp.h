#pragma once

#include <windows.h>

// Proxy settings: never one.
struct WINHTTP_CURRENT_USER_IE_PROXY_CONFIG {
    BOOL fAutoDetect;
    LPWSTR lpszAutoConfigUrl, lpszProxy, lpszProxyBypass;
};
inline BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG* config) {
    *config = {TRUE, nullptr, nullptr, nullptr};
    return TRUE;
}
inline HANDLE GlobalFree(void* memory) {
    return LocalFree(memory);
}
