#pragma once

/// @file
/// The lock of the account state.

/// The slim reader/writer lock of the account state. Not recursive. A class of its own so that hosts need no platform
/// header.
class AccountStateLock {
public:
    AccountStateLock() = default;  ///< Unlocked.
    AccountStateLock(const AccountStateLock&) = delete;
    AccountStateLock& operator=(const AccountStateLock&) = delete;

    void LockShared();       ///< For a reader; waits for a writer.
    void UnlockShared();     ///< On the thread that locked.
    void LockExclusive();    ///< For a writer; waits for everybody.
    void UnlockExclusive();  ///< On the thread that locked.

private:
    void* m_native = nullptr;  // storage of one SRWLOCK; all zero is its unlocked state
};
