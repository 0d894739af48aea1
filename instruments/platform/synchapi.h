#pragma once

#include <sched.h>

#include <atomic>
#include <cstdint>

// Slim reader/writer locks. As the platform's: one word of storage, all zero is unlocked, not recursive, nothing to
// destroy. Not as the platform's: a waiting writer does not keep new readers out.
struct SRWLOCK {
    std::atomic<std::uintptr_t> holders;  // the number of readers, or all bits set: a writer
};
static_assert(sizeof(SRWLOCK) == sizeof(void*));
#define SRWLOCK_INIT SRWLOCK()

inline unsigned char TryAcquireSRWLockShared(SRWLOCK* lock) {
    std::uintptr_t holders = lock->holders.load(std::memory_order_relaxed);
    return holders != ~std::uintptr_t{0} &&
           lock->holders.compare_exchange_strong(holders, holders + 1, std::memory_order_acquire);
}
inline void AcquireSRWLockShared(SRWLOCK* lock) {
    while (TryAcquireSRWLockShared(lock) == 0) {
        sched_yield();
    }
}
inline void ReleaseSRWLockShared(SRWLOCK* lock) {
    lock->holders.fetch_sub(1, std::memory_order_release);
}
inline void AcquireSRWLockExclusive(SRWLOCK* lock) {
    std::uintptr_t nobody = 0;
    while (!lock->holders.compare_exchange_weak(nobody, ~std::uintptr_t{0}, std::memory_order_acquire)) {
        nobody = 0;
        sched_yield();
    }
}
inline void ReleaseSRWLockExclusive(SRWLOCK* lock) {
    lock->holders.store(0, std::memory_order_release);
}
