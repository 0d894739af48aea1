#include "synckey/TemporaryKey.h"

#include <windows.h>
// wincrypt.h comes after windows.h.
#include <wincrypt.h>

namespace userauth {
namespace {

static_assert(sizeof(HCRYPTPROV) == sizeof(std::uintptr_t));

constexpr std::uint32_t kNoFlags = 0;
constexpr std::uint32_t kNewKeyContainer = CRYPT_NEWKEYSET;                       // 8
constexpr auto kNoSuchKeyContainer = static_cast<std::uint32_t>(NTE_BAD_KEYSET);  // 0x80090016

bool Acquire(std::uintptr_t& context, std::uint32_t flags) {
    HCRYPTPROV provider = 0;
    const bool acquired = CryptAcquireContextW(&provider, L"Container", nullptr, PROV_RSA_FULL, flags) != FALSE;
    context = provider;
    return acquired;
}

std::uint32_t LastError() {
    return GetLastError();
}

void Generate(std::uintptr_t context, std::vector<unsigned char>& bytes) {
    CryptGenRandom(context, static_cast<DWORD>(bytes.size()), bytes.data());
}

void Release(std::uintptr_t context) {
    CryptReleaseContext(context, 0);
}

}  // namespace

const RandomSource& PlatformRandomSource() {
    static const RandomSource source = {Acquire, LastError, Generate, Release};
    return source;
}

std::vector<unsigned char> DrawTemporaryKey(const RandomSource& source) {
    std::vector<unsigned char> key(kTemporaryKeyBytes);
    std::uintptr_t context = 0;
    // The container is missing on a machine's very first run. After any other failure the null context is used as it
    // is.
    if (!source.acquire(context, kNoFlags) && source.lastError() == kNoSuchKeyContainer &&
        !source.acquire(context, kNewKeyContainer)) {
        return key;
    }
    source.generate(context, key);
    source.release(context);
    return key;
}

}  // namespace userauth
