#pragma once

#include <windows.h>

// What a HANDLE stands for. CloseHandle destroys it.
struct KernelObject {
    virtual ~KernelObject() = default;
    // WAIT_OBJECT_0: it is signalled, and taken; WAIT_TIMEOUT: it is not; WAIT_FAILED: cannot be waited for.
    virtual DWORD Wait(DWORD) { return WAIT_FAILED; }
};

// The object behind a handle; null for a pseudo handle, an invalid one and another kind.
template <typename Object = KernelObject>
Object* ObjectOf(HANDLE handle) {
    const auto number = reinterpret_cast<std::intptr_t>(handle);
    return number >= -2 && number <= 0 ? nullptr : dynamic_cast<Object*>(static_cast<KernelObject*>(handle));
}

// Sets the thread's last error.
inline BOOL Refuse(DWORD error) {
    SetLastError(error);
    return FALSE;
}
