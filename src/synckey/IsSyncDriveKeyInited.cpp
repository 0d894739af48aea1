#include "UserSyncKeyService.h"
#include "synckey/SyncKeyRecord.h"

// By the key of type 1, where the photo library is by type 3: deliberately different.
bool UserSyncKeyService::IsSyncDriveKeyInited() try {
    return userauth::HoldsKey(GlobalParamWrapper::GetInstance()->GetUserInfo().driveKey1);
} catch (...) {
    return false;
}
