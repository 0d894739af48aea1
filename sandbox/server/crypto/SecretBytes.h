#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <openssl/crypto.h>

namespace sandbox {

// Wipes what it gives back.
template <typename Value>
struct WipingAllocator {
    using value_type = Value;

    WipingAllocator() = default;
    template <typename Other>
    explicit WipingAllocator(const WipingAllocator<Other>&) noexcept {}

    Value* allocate(std::size_t count) { return std::allocator<Value>().allocate(count); }
    void deallocate(Value* values, std::size_t count) noexcept {
        OPENSSL_cleanse(values, count * sizeof(Value));
        std::allocator<Value>().deallocate(values, count);
    }
    bool operator==(const WipingAllocator&) const noexcept { return true; }
    bool operator!=(const WipingAllocator&) const noexcept { return false; }
};

// Keys and shared secrets: no copy of the bytes stays behind when the vector goes or grows.
using SecretBytes = std::vector<unsigned char, WipingAllocator<unsigned char>>;

}  // namespace sandbox
