#pragma once

#include <windows.h>

struct WINHTTP_CURRENT_USER_IE_PROXY_CONFIG {
    BOOL fAutoDetect;
    wchar_t* lpszAutoConfigUrl;
    wchar_t* lpszProxy;
    wchar_t* lpszProxyBypass;
};
BOOL WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG* config);
