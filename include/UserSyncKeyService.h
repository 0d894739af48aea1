#pragma once

#include <string>
#include <vector>

#include "UserAuthExport.h"
#include "UserAuthTypes.h"

// Retrieves the user's end-to-end sync keys for the sync drive and the cloud photo library into the parameter store's
// user record (st_UserInfo), where the drive and photo modules read them. Carries no data; any number of objects may
// exist. The record has no lock: the host orders these calls, and its own reading of the keys, itself.
// Nothing is thrown. How the keys travel: docs/key-exchange.md.
class USERAUTH_API UserSyncKeyService {
public:
    UserSyncKeyService();
    ~UserSyncKeyService();
    UserSyncKeyService(const UserSyncKeyService&) = default;
    UserSyncKeyService& operator=(const UserSyncKeyService&);

    // Retrieves the keys that are missing, on the caller's thread, with the access token and the user id of
    // UserAuthService, and tells the event hub of each service whose key is there. True when both are there. When both
    // were there before, nothing is asked and nobody is told. Keys that arrived stay when a later step fails.
    bool InitUserSyncKey();

    // Zero-fills the four keys; their uuids stay.
    void ClearUserSyncKey();

    // Whether the drive's key of type 1, or the photo library's of type 3, has a byte that is not zero. The interface
    // gives each service its own type.
    bool IsSyncDriveKeyInited();
    bool IsCloudPhotoKeyInited();

private:
    friend class UserSyncKeyServiceAccess;  // the one door for tests; the library does not define it

    bool getUserKeyList(const std::wstring& keyExchangeToken, std::wstring keyVersion,
                        std::vector<unsigned char> tempKey, const std::wstring& dataType);
    bool encodeUserKey(const std::string& encryptedKey, const std::string& keySHA256, const std::string& keyUuid,
                       const int& keyType, const std::vector<unsigned char>& tempKey, const std::wstring& dataType);
};
