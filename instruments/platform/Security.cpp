// Random numbers and data protection. Like the platform: a key container must exist before it can be acquired, a null
// provider draws nothing, and a blob that was changed, or that nobody protected, does not unprotect. Unlike it: one
// container answers to every name, and the blob is disguised, not encrypted, and belongs to every user.

#include <bcrypt.h>
#include <dpapi.h>
#include <sys/random.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>

#include "Handles.h"

namespace {

constexpr HCRYPTPROV kProvider = 0x5150;

bool Draw(BYTE* buffer, std::size_t bytes) {
    return getrandom(buffer, bytes, 0) == static_cast<ssize_t>(bytes);
}

std::string TextOf(const DATA_BLOB* blob) {
    return {reinterpret_cast<const char*>(blob->pbData), blob->cbData};
}

BOOL HandOut(const std::string& bytes, DATA_BLOB* blob) {
    *blob = {static_cast<DWORD>(bytes.size()), static_cast<BYTE*>(std::malloc(bytes.size() + 1))};
    std::copy(bytes.begin(), bytes.end(), blob->pbData);
    return TRUE;
}

std::string Disguised(std::string bytes) {
    std::transform(bytes.begin(), bytes.end(), bytes.begin(), [](char byte) { return static_cast<char>(byte ^ 0x5A); });
    return bytes;
}

// With a sum behind it that nobody else makes.
std::string Sealed(const std::string& bytes) {
    const std::size_t sum = std::hash<std::string>()("DPAPI stand-in" + bytes);
    return bytes + std::string(reinterpret_cast<const char*>(&sum), sizeof(sum));
}

}  // namespace

BOOL CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR, LPCWSTR, DWORD, DWORD flags) {
    static std::atomic<bool> exists{false};
    exists = exists || (flags & CRYPT_NEWKEYSET) != 0;
    if (!exists) {
        return Refuse(static_cast<DWORD>(NTE_BAD_KEYSET));
    }
    *provider = kProvider;
    return TRUE;
}

BOOL CryptGenRandom(HCRYPTPROV provider, DWORD bytes, BYTE* buffer) {
    return provider == kProvider ? Draw(buffer, bytes) : Refuse(ERROR_INVALID_PARAMETER);
}

BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD) {
    return provider == kProvider || Refuse(ERROR_INVALID_PARAMETER);
}

NTSTATUS BCryptGenRandom(void* algorithm, BYTE* buffer, ULONG bytes, ULONG flags) {
    constexpr auto kInvalidParameter = static_cast<NTSTATUS>(0xC000000D);
    const bool system = algorithm == nullptr && flags == BCRYPT_USE_SYSTEM_PREFERRED_RNG;
    return system && Draw(buffer, bytes) ? 0 : kInvalidParameter;
}

BOOL CryptProtectData(DATA_BLOB* plain, LPCWSTR, DATA_BLOB*, void*, void*, DWORD, DATA_BLOB* protectedData) {
    return HandOut(Sealed(Disguised(TextOf(plain))), protectedData);
}

BOOL CryptUnprotectData(DATA_BLOB* protectedData, wchar_t**, DATA_BLOB*, void*, void*, DWORD, DATA_BLOB* plain) {
    constexpr DWORD kInvalidData = 13;
    const std::string blob = TextOf(protectedData);
    const std::string hidden = blob.substr(0, blob.size() - std::min(blob.size(), sizeof(std::size_t)));
    return Sealed(hidden) == blob ? HandOut(Disguised(hidden), plain) : Refuse(kInvalidData);
}
