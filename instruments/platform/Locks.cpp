// Slim reader/writer locks. As the platform's: one word of storage, all zero is unlocked, not recursive, nothing to
// destroy. Not as the platform's: a waiting writer does not keep new readers out.

#include <sched.h>
#include <windows.h>

#include <atomic>

namespace {

constexpr std::uintptr_t kExclusive = ~std::uintptr_t{0};

// The number of readers, or kExclusive.
std::atomic<std::uintptr_t>& HoldersOf(SRWLOCK* lock) {
    static_assert(sizeof(std::atomic<std::uintptr_t>) == sizeof(void*));
    return *reinterpret_cast<std::atomic<std::uintptr_t>*>(&lock->Ptr);
}

}  // namespace

BOOLEAN TryAcquireSRWLockShared(SRWLOCK* lock) {
    std::uintptr_t holders = HoldersOf(lock).load(std::memory_order_relaxed);
    return holders != kExclusive &&
           HoldersOf(lock).compare_exchange_strong(holders, holders + 1, std::memory_order_acquire);
}

void AcquireSRWLockShared(SRWLOCK* lock) {
    while (TryAcquireSRWLockShared(lock) == FALSE) {
        sched_yield();
    }
}

void ReleaseSRWLockShared(SRWLOCK* lock) {
    HoldersOf(lock).fetch_sub(1, std::memory_order_release);
}

void AcquireSRWLockExclusive(SRWLOCK* lock) {
    std::uintptr_t nobody = 0;
    while (!HoldersOf(lock).compare_exchange_weak(nobody, kExclusive, std::memory_order_acquire)) {
        nobody = 0;
        sched_yield();
    }
}

void ReleaseSRWLockExclusive(SRWLOCK* lock) {
    HoldersOf(lock).store(0, std::memory_order_release);
}
