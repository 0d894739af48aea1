#include <ParamStore.h>
#include <openssl/crypto.h>

#include "UserSyncKeyService.h"

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
