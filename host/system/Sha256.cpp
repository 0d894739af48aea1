#include "system/Sha256.h"

#include <windows.h>
// After windows.h.
#include <bcrypt.h>

#include <array>
#include <memory>

#include "system/HostError.h"

namespace host {
namespace {

struct AlgorithmClose {
    void operator()(void* algorithm) const noexcept { BCryptCloseAlgorithmProvider(algorithm, 0); }
};
struct HashDestroy {
    void operator()(void* hash) const noexcept { BCryptDestroyHash(hash); }
};

void Require(NTSTATUS status) {
    if (status < 0) {
        throw HostError(kExitStepFailed, "the system gives no SHA-256: status " + std::to_string(status));
    }
}

}  // namespace

std::string Sha256Hex(const std::uint8_t* bytes, std::size_t count) {
    BCRYPT_ALG_HANDLE rawAlgorithm = nullptr;
    Require(BCryptOpenAlgorithmProvider(&rawAlgorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    const std::unique_ptr<void, AlgorithmClose> algorithm(rawAlgorithm);
    BCRYPT_HASH_HANDLE rawHash = nullptr;
    Require(BCryptCreateHash(algorithm.get(), &rawHash, nullptr, 0, nullptr, 0, 0));
    const std::unique_ptr<void, HashDestroy> hash(rawHash);
    // The input is not const in the platform's declaration, and not written.
    Require(BCryptHashData(hash.get(), const_cast<PUCHAR>(bytes), static_cast<ULONG>(count), 0));
    std::array<std::uint8_t, 32> digest{};
    Require(BCryptFinishHash(hash.get(), digest.data(), static_cast<ULONG>(digest.size()), 0));

    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const std::uint8_t byte : digest) {
        hex += kDigits[byte >> 4U];
        hex += kDigits[byte & 0xFU];
    }
    return hex;
}

}  // namespace host
