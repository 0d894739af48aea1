#pragma once

#include <windows.h>

using HCRYPTPROV = ULONG_PTR;
constexpr DWORD PROV_RSA_FULL = 1;
constexpr DWORD CRYPT_NEWKEYSET = 8;
constexpr HRESULT NTE_BAD_KEYSET = static_cast<HRESULT>(0x80090016);
struct DATA_BLOB {
    DWORD cbData;
    BYTE* pbData;
};
BOOL CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR container, LPCWSTR providerName, DWORD type, DWORD flags);
BOOL CryptGenRandom(HCRYPTPROV provider, DWORD bytes, BYTE* buffer);
BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD flags);
