#pragma once

#include <windows.h>

// What "kernel32" and "ntdll.dll" export under that name here; null for every other name.
FARPROC SystemEntryPoint(const char* name);
