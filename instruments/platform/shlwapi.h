#pragma once

#include <windows.h>

BOOL PathAppendW(wchar_t* path, LPCWSTR more);
int StrCmpIW(LPCWSTR left, LPCWSTR right);
