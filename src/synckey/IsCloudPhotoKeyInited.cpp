#include "UserSyncKeyService.h"
#include "synckey/SyncKeyRecord.h"

// By the key of type 3, where the drive is by type 1: deliberately different.
bool UserSyncKeyService::IsCloudPhotoKeyInited() try {
    return userauth::HoldsKey(GlobalParamWrapper::GetInstance()->GetUserInfo().photoKey3);
} catch (...) {
    return false;
}
