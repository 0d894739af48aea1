#pragma once

#include <windows.h>

#include <chrono>

// What a HANDLE stands for. CloseHandle destroys it.
struct KernelObject {
    virtual ~KernelObject() = default;
    // WAIT_OBJECT_0, WAIT_ABANDONED, WAIT_TIMEOUT or, for what cannot be waited for, WAIT_FAILED.
    virtual DWORD Wait(std::chrono::milliseconds) { return WAIT_FAILED; }
};
