#pragma once

#include <string>

// Lets allocations of the calling thread fail: those of operator new (the C++ runtime's and the JSON library's too), of
// OpenSSL, or, in a program that gives them functions that ask Fails, of libcurl or of the decoders of content codings.
enum class Allocator { kNew, kOpenSsl, kLibcurl, kDecoders };
// Whether the allocation that is asked for now is to fail.
bool Fails(Allocator allocator);

class FailingAllocations {
public:
    // The one with this number, from 0, fails; when lasting, all that follow it too.
    FailingAllocations(Allocator allocator, int number, bool lasting);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    int Failed() const;  // how many have failed
    int Asked() const;   // how many have been asked for, until the first failed

private:
    const int m_number;
};

// Keeps what the calling thread's blocks held when they were freed, of both allocators.
class FreedMemory {
public:
    FreedMemory();
    ~FreedMemory();
    FreedMemory(const FreedMemory&) = delete;
    FreedMemory& operator=(const FreedMemory&) = delete;

    bool Holds(const std::string& bytes) const { return m_content.find(bytes) != std::string::npos; }

private:
    friend void Collect(void* memory);
    std::string m_content;
};

// Allocations are neither counted nor failed, and what is freed is not looked at: for what a test does in the middle of
// an operation.
class Uncounted {
public:
    Uncounted();
    ~Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;

private:
    bool m_before;
};
