#include "synckey/SyncKeyRecord.h"

#include "UserAuthTypes.h"

namespace userauth {
namespace {

template <std::size_t Bytes, std::size_t Characters>
void StoreInto(std::uint8_t (&keyField)[Bytes], wchar_t (&uuidField)[Characters], const std::vector<unsigned char>& key,
               const std::wstring& uuid) {
    if (key.size() > Bytes) {
        return;
    }
    std::copy(key.begin(), key.end(), keyField);
    const std::size_t length = std::min(uuid.find(L'\0'), uuid.size());
    const std::size_t characters = length < Characters ? length : 0;
    std::copy_n(uuid.begin(), characters, uuidField);
    uuidField[characters] = L'\0';
}

}  // namespace

void StoreSyncKey(st_UserInfo& record, int keyType, const std::wstring& dataType, const std::vector<unsigned char>& key,
                  const std::wstring& uuid) {
    const bool drive = dataType == kSyncDriveDataType;
    if (!drive && dataType != kCloudPhotoDataType) {
        return;
    }
    if (keyType == kKeyType1 && drive) {
        StoreInto(record.driveKey1, record.driveKeyUuid1, key, uuid);
    } else if (keyType == kKeyType1) {
        StoreInto(record.photoKey1, record.photoKeyUuid1, key, uuid);
    } else if (keyType == kKeyType3 && drive) {
        StoreInto(record.driveKey3, record.driveKeyUuid3, key, uuid);
    } else if (keyType == kKeyType3) {
        StoreInto(record.photoKey3, record.photoKeyUuid3, key, uuid);
    }
}

}  // namespace userauth
