#include "AccountStateLock.h"

#include <windows.h>

namespace {

SRWLOCK* Native(void*& storage) {
    static_assert(sizeof(SRWLOCK) == sizeof(void*), "the storage holds exactly one slim lock");
    return reinterpret_cast<SRWLOCK*>(&storage);
}

}  // namespace

void AccountStateLock::LockShared() {
    AcquireSRWLockShared(Native(m_native));
}
void AccountStateLock::UnlockShared() {
    ReleaseSRWLockShared(Native(m_native));
}
void AccountStateLock::LockExclusive() {
    AcquireSRWLockExclusive(Native(m_native));
}
void AccountStateLock::UnlockExclusive() {
    ReleaseSRWLockExclusive(Native(m_native));
}
