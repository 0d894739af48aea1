#pragma once

#include <windows.h>

using NTSTATUS = LONG;
constexpr ULONG BCRYPT_USE_SYSTEM_PREFERRED_RNG = 2;
NTSTATUS BCryptGenRandom(void* algorithm, BYTE* buffer, ULONG bytes, ULONG flags);
