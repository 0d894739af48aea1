#pragma once

/// @file
/// The sync keys' part of the service.

#include <string>
#include <vector>

#include "UserAuthExport.h"
#include "UserAuthTypes.h"

/// Retrieves the user's end-to-end sync keys for the sync drive and the cloud photo library into the parameter store's
/// user record (st_UserInfo), where the drive and photo modules read them. Carries no data; any number of objects may
/// exist. The record has no lock: the host orders these calls, and its own reading of the keys, itself.
/// Nothing is thrown. How the keys travel: docs/key-exchange.md.
class USERAUTH_API UserSyncKeyService {
public:
    UserSyncKeyService();   ///< Does nothing.
    ~UserSyncKeyService();  ///< Does nothing.
    /// Copies nothing: there is no data.
    UserSyncKeyService(const UserSyncKeyService&) = default;
    /// Copies nothing.
    /// @return this object
    UserSyncKeyService& operator=(const UserSyncKeyService&);

    /// Retrieves the keys that are missing, on the caller's thread, with the access token and the user id of
    /// UserAuthService, and tells the event hub of each service whose key is there. When both
    /// were there before, nothing is asked and nobody is told. Keys that arrived stay when a later step fails.
    /// Log lines and what a client does after each outcome: docs/operations/sync-keys.md. No operation event.
    /// @return true when both are there
    bool InitUserSyncKey();

    /// Zero-fills the four keys; their uuids stay.
    void ClearUserSyncKey();

    /// The interface gives each service its own type of key.
    /// @return whether the drive's key of type 1 has a byte that is not zero
    bool IsSyncDriveKeyInited();
    /// @return whether the photo library's key of type 3 has a byte that is not zero
    bool IsCloudPhotoKeyInited();

private:
    friend class UserSyncKeyServiceAccess;  ///< the one door for tests; the library does not define it

    bool getUserKeyList(const std::wstring& keyExchangeToken, std::wstring keyVersion,
                        std::vector<unsigned char> tempKey, const std::wstring& dataType);
    bool encodeUserKey(const std::string& encryptedKey, const std::string& keySHA256, const std::string& keyUuid,
                       const int& keyType, const std::vector<unsigned char>& tempKey, const std::wstring& dataType);
};
