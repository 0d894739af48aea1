#pragma once

#include <windows.h>

BOOL PathAppendW(wchar_t* path, LPCWSTR more);
