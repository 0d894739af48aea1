#include "FailingAllocations.h"

#include <openssl/crypto.h>

#include <malloc.h>

#include <cstdlib>
#include <new>

void Collect(void* memory);

namespace {

struct Plan {
    bool counting;
    Allocator allocator;
    int number;
    bool lasting;
    int failed;
    FreedMemory* freed;
};
thread_local Plan g_plan;

}  // namespace

bool Fails(Allocator allocator) {
    if (!g_plan.counting || g_plan.allocator != allocator || g_plan.number-- > 0 ||
        (g_plan.failed > 0 && !g_plan.lasting)) {
        return false;
    }
    ++g_plan.failed;
    return true;
}

namespace {

void Free(void* memory) {
    Collect(memory);
    std::free(memory);
}

void* OpenSslMalloc(std::size_t size, const char*, int) {
    return Fails(Allocator::kOpenSsl) ? nullptr : std::malloc(size);
}
void* OpenSslRealloc(void* memory, std::size_t size, const char*, int) {
    return Fails(Allocator::kOpenSsl) ? nullptr : std::realloc(memory, size);
}
void OpenSslFree(void* memory, const char*, int) {
    Free(memory);
}

// Before OpenSSL allocates for the first time.
const int g_installed = CRYPTO_set_mem_functions(OpenSslMalloc, OpenSslRealloc, OpenSslFree);

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = Fails(Allocator::kNew) ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void operator delete(void* memory) noexcept {
    Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    Free(memory);
}

FailingAllocations::FailingAllocations(Allocator allocator, int number, bool lasting) : m_number(number) {
    g_plan = {g_installed == 1, allocator, number, lasting, 0, nullptr};
}
FailingAllocations::~FailingAllocations() {
    g_plan.counting = false;
}
int FailingAllocations::Failed() const {
    return g_plan.failed;
}
int FailingAllocations::Asked() const {
    return m_number - g_plan.number;
}

Uncounted::Uncounted() : m_before(g_plan.counting) {
    g_plan.counting = false;
}
Uncounted::~Uncounted() {
    g_plan.counting = m_before;
}

FreedMemory::FreedMemory() {
    m_content.reserve(64 << 20);
    g_plan = {true, Allocator::kNew, 1 << 30, false, 0, this};
}
FreedMemory::~FreedMemory() {
    g_plan = {};
}

void Collect(void* memory) {
    FreedMemory* const freed = g_plan.counting ? g_plan.freed : nullptr;
    if (freed == nullptr || memory == nullptr) {
        return;
    }
    const std::size_t size = malloc_usable_size(memory);
    const Uncounted uncounted;
    freed->m_content.append(static_cast<const char*>(memory), size);
}
