#include <openssl/crypto.h>

#include "UserSyncKeyService.h"
#include "core/Base64.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "core/WipeAtExit.h"
#include "synckey/AesGcm.h"
#include "synckey/Sha256Hex.h"
#include "synckey/SyncKeyRecord.h"

namespace {

constexpr char kTag[] = "UserSyncKeyService::encodeUserKey";

std::vector<unsigned char> Unwrap(const std::string& base64, const std::vector<unsigned char>& temporaryKey) {
    const std::string blob = userauth::Base64Decode(base64);
    return userauth::AesGcmDecrypt({blob.begin(), blob.end()}, temporaryKey);
}

// Compares without giving away, by the time it takes, how far two texts of one length agree.
bool SameText(const std::string& left, const std::string& right) {
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

// Decodes, whatever its name says: unwraps one key of the list, checks it against the digest that came with it and
// stores it.
bool UserSyncKeyService::encodeUserKey(const std::string& encryptedKey, const std::string& keySHA256,
                                       const std::string& keyUuid, const int& keyType,
                                       const std::vector<unsigned char>& tempKey, const std::wstring& dataType) try {
    st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    std::vector<unsigned char> plainKey = Unwrap(encryptedKey, tempKey);
    const userauth::WipeAtExit wipeKey(plainKey);
    // Wiped like the key: a server that mixes the two up sends the key here.
    std::vector<unsigned char> digest = Unwrap(keySHA256, tempKey);
    const userauth::WipeAtExit wipeDigest(digest);
    std::string expectedDigest = userauth::LowerHex(digest);
    const userauth::WipeAtExit wipeText(expectedDigest);
    if (!SameText(userauth::Sha256Hex(plainKey), expectedDigest)) {
        userauth::WriteLog(kSeverityFailure, __LINE__, kTag,
                           L"check user key sha256 fail, keyType:" + std::to_wstring(keyType));
        return false;
    }
    userauth::WriteLog(kSeverityProgress, __LINE__, kTag,
                       L"check user key sha256 success, keyType:" + std::to_wstring(keyType));
    // A success whether or not anything is stored: the rest of the list is to be read. One byte is what a failed
    // decryption leaves, and a server can send the digest of that.
    if (plainKey.size() != 1) {
        userauth::StoreSyncKey(record, keyType, dataType, plainKey,
                               userauth::MultiByteToWide(keyUuid, userauth::kUtf8CodePage));
    }
    return true;
} catch (...) {
    return false;
}
