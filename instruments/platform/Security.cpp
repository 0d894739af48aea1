// Random numbers and data protection. Like the platform: a key container must exist before it can be acquired, a null
// provider draws nothing, and a blob that was changed, or that nobody protected, does not unprotect. Unlike it: the
// blob is disguised, not encrypted, and belongs to every user.

#include <bcrypt.h>
#include <dpapi.h>
#include <sys/random.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <numeric>
#include <set>
#include <string>

#include "Handles.h"

namespace {

constexpr HCRYPTPROV kProvider = 0x5150;
constexpr char kMark[] = "DPAPI stand-in";
constexpr std::size_t kHead = sizeof(kMark) + 1;  // the mark with its terminator, the sum of what follows

bool Draw(BYTE* buffer, std::size_t bytes) {
    return getrandom(buffer, bytes, 0) == static_cast<ssize_t>(bytes);
}

void HandOut(const std::string& bytes, DATA_BLOB* blob) {
    blob->cbData = static_cast<DWORD>(bytes.size());
    blob->pbData = static_cast<BYTE*>(std::malloc(bytes.size() + 1));
    std::memcpy(blob->pbData, bytes.data(), bytes.size());
}

std::string Disguised(std::string bytes) {
    for (char& byte : bytes) {
        byte = static_cast<char>(byte ^ 0x5A);
    }
    return bytes;
}

char SumOf(const std::string& bytes) {
    return static_cast<char>(
        std::accumulate(bytes.begin(), bytes.end(), 17, [](int sum, char byte) { return (sum * 31 + byte) & 0xFF; }));
}

}  // namespace

BOOL CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR container, LPCWSTR, DWORD, DWORD flags) {
    static std::mutex lock;
    static auto* const containers = new std::set<std::wstring>;
    const std::lock_guard<std::mutex> hold(lock);
    if ((flags & CRYPT_NEWKEYSET) != 0) {
        containers->insert(container);
    } else if (containers->count(container) == 0) {
        return Refuse(static_cast<DWORD>(NTE_BAD_KEYSET));
    }
    *provider = kProvider;
    return TRUE;
}

BOOL CryptGenRandom(HCRYPTPROV provider, DWORD bytes, BYTE* buffer) {
    return provider == kProvider ? Draw(buffer, bytes) : Refuse(ERROR_INVALID_PARAMETER);
}

NTSTATUS BCryptGenRandom(void* algorithm, BYTE* buffer, ULONG bytes, ULONG flags) {
    constexpr auto kInvalidParameter = static_cast<NTSTATUS>(0xC000000D);
    const bool system = algorithm == nullptr && flags == BCRYPT_USE_SYSTEM_PREFERRED_RNG;
    return system && Draw(buffer, bytes) ? 0 : kInvalidParameter;
}

BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD) {
    return provider == kProvider || Refuse(ERROR_INVALID_PARAMETER);
}

BOOL CryptProtectData(DATA_BLOB* plain, LPCWSTR, DATA_BLOB*, void*, void*, DWORD, DATA_BLOB* protectedData) {
    const std::string hidden = Disguised(std::string(reinterpret_cast<const char*>(plain->pbData), plain->cbData));
    HandOut(std::string(kMark, sizeof(kMark)) + SumOf(hidden) + hidden, protectedData);
    return TRUE;
}

BOOL CryptUnprotectData(DATA_BLOB* protectedData, wchar_t**, DATA_BLOB*, void*, void*, DWORD, DATA_BLOB* plain) {
    constexpr DWORD kInvalidData = 13;
    const std::string bytes(reinterpret_cast<const char*>(protectedData->pbData), protectedData->cbData);
    if (bytes.size() < kHead || std::memcmp(bytes.data(), kMark, sizeof(kMark)) != 0 ||
        SumOf(bytes.substr(kHead)) != bytes[kHead - 1]) {
        return Refuse(kInvalidData);
    }
    HandOut(Disguised(bytes.substr(kHead)), plain);
    return TRUE;
}
