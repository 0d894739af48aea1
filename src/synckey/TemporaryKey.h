#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace userauth {

inline constexpr std::size_t kTemporaryKeyBytes = 16;

// The platform's random generator, call by call; a table so that each of them can be made to fail.
struct RandomSource {
    bool (*acquire)(std::uintptr_t& context, std::uint32_t flags);  // false: context is null, lastError tells why
    std::uint32_t (*lastError)();
    void (*generate)(std::uintptr_t context, std::vector<unsigned char>& bytes);
    void (*release)(std::uintptr_t context);
};

const RandomSource& PlatformRandomSource();

// A fresh temporary key of 16 bytes. There is no failure: whatever goes wrong leaves the key all zero, and nobody is
// told. docs/key-exchange.md says what follows from that.
std::vector<unsigned char> DrawTemporaryKey(const RandomSource& source = PlatformRandomSource());

}  // namespace userauth
