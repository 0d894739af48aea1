#pragma once

// The slim reader/writer lock of the account state. Not recursive. A class of its own so that hosts need no platform
// header.
class AccountStateLock {
public:
    AccountStateLock() = default;
    AccountStateLock(const AccountStateLock&) = delete;
    AccountStateLock& operator=(const AccountStateLock&) = delete;

    void LockShared();
    void UnlockShared();
    void LockExclusive();
    void UnlockExclusive();

private:
    void* m_native = nullptr;  // storage of one SRWLOCK; all zero is its unlocked state
};
