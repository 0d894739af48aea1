#pragma once

#include <wincrypt.h>

BOOL CryptProtectData(DATA_BLOB* plain, LPCWSTR description, DATA_BLOB* entropy, void* reserved, void* prompt,
                      DWORD flags, DATA_BLOB* protectedData);
BOOL CryptUnprotectData(DATA_BLOB* protectedData, wchar_t** description, DATA_BLOB* entropy, void* reserved,
                        void* prompt, DWORD flags, DATA_BLOB* plain);
