#pragma once

#include "AccountStateLock.h"

namespace userauth {

// A shared or exclusive hold of the account state, for the length of a scope. Taken to copy in or out, never across an
// exchange, a callback or a log call.
class SharedHold {
public:
    explicit SharedHold(AccountStateLock& lock) : m_lock(lock) { m_lock.LockShared(); }
    ~SharedHold() { m_lock.UnlockShared(); }
    SharedHold(const SharedHold&) = delete;
    SharedHold& operator=(const SharedHold&) = delete;

private:
    AccountStateLock& m_lock;
};

class ExclusiveHold {
public:
    explicit ExclusiveHold(AccountStateLock& lock) : m_lock(lock) { m_lock.LockExclusive(); }
    ~ExclusiveHold() { m_lock.UnlockExclusive(); }
    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;

private:
    AccountStateLock& m_lock;
};

}  // namespace userauth
