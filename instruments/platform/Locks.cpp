// Slim reader/writer locks. As the platform's: one word of storage, all zero is unlocked, not recursive, nothing to
// destroy. Not as the platform's: a waiting writer does not keep new readers out.

#include <sched.h>
#include <windows.h>

static_assert(sizeof(SRWLOCK) == sizeof(void*));

constexpr std::uintptr_t kExclusive = ~std::uintptr_t{0};

BOOLEAN TryAcquireSRWLockShared(SRWLOCK* lock) {
    std::uintptr_t holders = lock->holders.load(std::memory_order_relaxed);
    return holders != kExclusive &&
           lock->holders.compare_exchange_strong(holders, holders + 1, std::memory_order_acquire);
}

void AcquireSRWLockShared(SRWLOCK* lock) {
    while (TryAcquireSRWLockShared(lock) == FALSE) {
        sched_yield();
    }
}

void ReleaseSRWLockShared(SRWLOCK* lock) {
    lock->holders.fetch_sub(1, std::memory_order_release);
}

void AcquireSRWLockExclusive(SRWLOCK* lock) {
    std::uintptr_t nobody = 0;
    while (!lock->holders.compare_exchange_weak(nobody, kExclusive, std::memory_order_acquire)) {
        nobody = 0;
        sched_yield();
    }
}

void ReleaseSRWLockExclusive(SRWLOCK* lock) {
    lock->holders.store(0, std::memory_order_release);
}
