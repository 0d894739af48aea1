// A host that has defined these before it includes the public headers: they must compile, alone and in any order.
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#define small char

#include "UserSyncKeyService.h"
// Not sorted: each header comes first once.
#include "UserAuthService.h"

#if defined(_WINDOWS_) || defined(JSON_JSON_H_INCLUDED) || defined(OPENSSL_VERSION_NUMBER)
#error "the public headers pull in a platform or third-party header"
#endif

// Copied by value as hosts do.
UserSyncKeyService CopyOf(const UserSyncKeyService& service);
UserSyncKeyService CopyOf(const UserSyncKeyService& service) {
    return service;
}
