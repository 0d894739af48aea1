#pragma once

#include <windows.h>

std::uintptr_t _beginthreadex(void* security, unsigned stack, unsigned (*run)(void*), void* argument, unsigned flags,
                              unsigned* id);
[[noreturn]] void FreeLibraryAndExitThread(HMODULE module, DWORD exitCode);
