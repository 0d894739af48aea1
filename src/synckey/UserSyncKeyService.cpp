#include "UserSyncKeyService.h"

#include <openssl/crypto.h>

#include "synckey/SyncKeyRecord.h"

UserSyncKeyService::UserSyncKeyService() = default;
UserSyncKeyService::~UserSyncKeyService() = default;
UserSyncKeyService& UserSyncKeyService::operator=(const UserSyncKeyService&) = default;

// The drive counts by its key of type 1, the photo library by its key of type 3: kept as it is.
bool UserSyncKeyService::IsSyncDriveKeyInited() try {
    return userauth::HoldsKey(GlobalParamWrapper::GetInstance()->GetUserInfo().driveKey1);
} catch (...) {
    return false;
}

bool UserSyncKeyService::IsCloudPhotoKeyInited() try {
    return userauth::HoldsKey(GlobalParamWrapper::GetInstance()->GetUserInfo().photoKey3);
} catch (...) {
    return false;
}

void UserSyncKeyService::ClearUserSyncKey() try {
    st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    // The uuids stay.
    OPENSSL_cleanse(record.driveKey1, sizeof(record.driveKey1));
    OPENSSL_cleanse(record.driveKey3, sizeof(record.driveKey3));
    OPENSSL_cleanse(record.photoKey1, sizeof(record.photoKey1));
    OPENSSL_cleanse(record.photoKey3, sizeof(record.photoKey3));
} catch (...) {
    return;
}
