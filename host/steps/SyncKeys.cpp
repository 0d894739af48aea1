#include "steps/SyncKeys.h"

#include <ParamStore.h>
#include <UserAuthTypes.h>
#include <windows.h>
// After windows.h.
#include <wincrypt.h>

#include <algorithm>

#include "system/WindowsHandle.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// SHA-256 of the key, 64 lower-case hexadecimal digits, by the system's own cryptography; empty when there is no key. A
// field is one byte longer than its key.
template <std::size_t FieldBytes>
std::string Fingerprint(const std::uint8_t (&field)[FieldBytes]) {
    if (std::all_of(field, field + FieldBytes, [](std::uint8_t byte) { return byte == 0; })) {
        return "";
    }
    BYTE digest[32] = {};
    DWORD size = sizeof(digest);
    RequireDone(CryptHashCertificate2(L"SHA256", 0, nullptr, field, FieldBytes - 1, digest, &size),
                "the system gives no SHA-256");
    std::string hex;
    for (const unsigned byte : digest) {
        hex += {"0123456789abcdef"[byte >> 4U], "0123456789abcdef"[byte & 0xFU]};
    }
    return hex;
}

}  // namespace

std::vector<SyncKey> SyncKeysOf(const st_UserInfo& record) {
    const std::string drive = ToUtf8(kSyncDriveDataType);
    const std::string photo = ToUtf8(kCloudPhotoDataType);
    return {
        {"drive 1", drive, kKeyType1, ToUtf8(record.driveKeyUuid1), Fingerprint(record.driveKey1)},
        {"drive 3", drive, kKeyType3, ToUtf8(record.driveKeyUuid3), Fingerprint(record.driveKey3)},
        {"photo 1", photo, kKeyType1, ToUtf8(record.photoKeyUuid1), Fingerprint(record.photoKey1)},
        {"photo 3", photo, kKeyType3, ToUtf8(record.photoKeyUuid3), Fingerprint(record.photoKey3)},
    };
}

}  // namespace host
