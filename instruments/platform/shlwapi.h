#pragma once

#include <windows.h>

BOOL PathAppendW(wchar_t* path, LPCWSTR more);
BOOL PathMatchSpecW(LPCWSTR name, LPCWSTR patterns);
int StrCmpIW(LPCWSTR left, LPCWSTR right);
