#include "UserSyncKeyService.h"

UserSyncKeyService::UserSyncKeyService() = default;
UserSyncKeyService::~UserSyncKeyService() = default;
UserSyncKeyService& UserSyncKeyService::operator=(const UserSyncKeyService&) = default;
