#pragma once

// Lets allocations of the calling thread fail: those of operator new in the program and in what calls it by the program's
// operator (everything, on the build machine; the service's objects, on Windows), or those of OpenSSL.
enum class Allocator { kNew, kOpenSsl };

class FailingAllocations {
public:
    // The one with this number, from 0, fails; when lasting, all that follow it too.
    FailingAllocations(Allocator allocator, int number, bool lasting);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    int Failed() const;  // how many have failed
};

// Allocations are neither counted nor failed: for what a test does in the middle of an operation.
class Uncounted {
public:
    Uncounted();
    ~Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;

private:
    bool m_before;
};
