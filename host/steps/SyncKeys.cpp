#include "steps/SyncKeys.h"

#include <ParamStore.h>

#include <algorithm>

#include "system/Sha256.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// A field is one byte longer than its key.
template <std::size_t FieldBytes>
std::string Fingerprint(const std::uint8_t (&field)[FieldBytes]) {
    const bool present = std::any_of(field, field + FieldBytes, [](std::uint8_t byte) { return byte != 0; });
    return present ? Sha256Hex(field, FieldBytes - 1) : "";
}

}  // namespace

std::vector<SyncKey> SyncKeysOf(const st_UserInfo& record) {
    return {
        {"drive 1", "11", 1, ToUtf8(record.driveKeyUuid1), Fingerprint(record.driveKey1)},
        {"drive 3", "11", 3, ToUtf8(record.driveKeyUuid3), Fingerprint(record.driveKey3)},
        {"photo 1", "12", 1, ToUtf8(record.photoKeyUuid1), Fingerprint(record.photoKey1)},
        {"photo 3", "12", 3, ToUtf8(record.photoKeyUuid3), Fingerprint(record.photoKey3)},
    };
}

}  // namespace host
