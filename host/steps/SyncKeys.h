#pragma once

#include <string>
#include <vector>

struct st_UserInfo;

namespace host {

// One sync key of the user record, as far as it may be shown.
struct SyncKey {
    std::string name;      // "drive 1"
    std::string dataType;  // kSyncDriveDataType or kCloudPhotoDataType
    int keyType;           // kKeyType1 or kKeyType3
    std::string uuid;
    std::string fingerprint;  // SHA-256 of the key in lower-case hexadecimal; empty when there is no key
};

// The record's four keys. Throws HostError when the system cannot make a fingerprint.
std::vector<SyncKey> SyncKeysOf(const st_UserInfo& record);

}  // namespace host
