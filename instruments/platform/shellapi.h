#pragma once

#include <windows.h>

LPWSTR* CommandLineToArgvW(LPCWSTR commandLine, int* count);
