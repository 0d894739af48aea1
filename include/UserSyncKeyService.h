#pragma once

#include "UserAuthExport.h"

// Retrieves the user's sync keys into the parameter store. Carries no data; any number of objects may exist.
class USERAUTH_API UserSyncKeyService {
public:
    UserSyncKeyService();
    ~UserSyncKeyService();
    UserSyncKeyService(const UserSyncKeyService&) = default;
    UserSyncKeyService& operator=(const UserSyncKeyService&);
};
