#pragma once

#include <shlobj.h>

constexpr DWORD COINIT_APARTMENTTHREADED = 2, COINIT_DISABLE_OLE1DDE = 4;
inline HRESULT CoInitializeEx(void*, DWORD) {
    return S_OK;
}
inline void CoUninitialize() {}
