#include <EventAdminModule.h>
#include <ParamStore.h>
#include <UserAuthTypes.h>
#include <UserSyncKeyService.h>
#include <windows.h>
// After windows.h.
#include <wincrypt.h>

#include <algorithm>

#include "platform/SandboxClient.h"
#include "steps/Steps.h"
#include "system/WindowsHandle.h"
#include "text/FieldText.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// What may be shown of a sync key.
struct SyncKey {
    std::string name;      // "drive 1"
    std::string dataType;  // kSyncDriveDataType or kCloudPhotoDataType
    int keyType;           // kKeyType1 or kKeyType3
    std::string uuid;
    std::string fingerprint;
};

// SHA-256 of the key in lower-case hexadecimal digits; empty when there is no key. A field is one byte longer than its
// key.
template <std::size_t FieldBytes>
std::string Fingerprint(const std::uint8_t (&field)[FieldBytes]) {
    if (std::all_of(field, field + FieldBytes, [](std::uint8_t byte) { return byte == 0; })) {
        return "";
    }
    BYTE digest[32] = {};
    DWORD size = sizeof(digest);
    RequireDone(CryptHashCertificate2(L"SHA256", 0, nullptr, field, FieldBytes - 1, digest, &size),
                "the system gives no SHA-256");
    std::string hex;
    for (const unsigned byte : digest) {
        hex += {"0123456789abcdef"[byte >> 4U], "0123456789abcdef"[byte & 0xFU]};
    }
    return hex;
}

std::vector<SyncKey> StoredKeys() {
    const st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    const std::string drive = ToUtf8(kSyncDriveDataType);
    const std::string photo = ToUtf8(kCloudPhotoDataType);
    return {
        {"drive 1", drive, kKeyType1, ToUtf8(record.driveKeyUuid1), Fingerprint(record.driveKey1)},
        {"drive 3", drive, kKeyType3, ToUtf8(record.driveKeyUuid3), Fingerprint(record.driveKey3)},
        {"photo 1", photo, kKeyType1, ToUtf8(record.photoKeyUuid1), Fingerprint(record.photoKey1)},
        {"photo 3", photo, kKeyType3, ToUtf8(record.photoKeyUuid3), Fingerprint(record.photoKey3)},
    };
}

Table KeyTable() {
    Table table{{"key", "uuid", "fingerprint"}};
    for (const SyncKey& key : StoredKeys()) {
        table.rows.push_back(
            {key.name, TextOrNone(ToWide(key.uuid)), key.fingerprint.empty() ? "none" : key.fingerprint});
    }
    return table;
}

// Each service announces its key by one event. The hub runs listeners on the raising thread, which is this one.
StepResult RetrieveKeys(SessionState&) {
    UserSyncKeyService service;
    const bool before = service.IsSyncDriveKeyInited() && service.IsCloudPhotoKeyInited();
    int drive = 0;
    int photo = 0;
    EventAdminModule& hub = *EventAdminModule::GetInstance();
    const auto driveId = hub.Subscribe(SuiteEvent::kSyncDriveKeyOk, [&drive](SuiteEvent) { ++drive; });
    const auto photoId = hub.Subscribe(SuiteEvent::kCloudPhotoKeyOk, [&photo](SuiteEvent) { ++photo; });
    const bool complete = service.InitUserSyncKey();
    hub.Unsubscribe(driveId);
    hub.Unsubscribe(photoId);
    const int expected = before ? 0 : 1;
    const std::string detail = !complete ? SeeLog("not all keys came") + "; "
                               : before  ? "both were there, nothing was asked; "
                                         : "";
    return {complete && drive == expected && photo == expected,
            detail + "events SyncDriveKeyOk " + std::to_string(drive) + ", CloudPhotoKeyOk " + std::to_string(photo),
            {},
            KeyTable()};
}

bool IsSandboxKey(const Json::Value& entry, const SyncKey& key) {
    return entry.isObject() && TextMember(entry, "dataType") == key.dataType &&
           entry["keyType"] == Json::Value(key.keyType) && TextMember(entry, "uuid") == key.uuid &&
           TextMember(entry, "sha256") == key.fingerprint;
}

// The sandbox tells the uuid and the fingerprint of each key of the account.
StepResult CompareKeys(SessionState& state) {
    const std::optional<Json::Value> reply = AskSandbox(state.sandbox->Address().http, "/sandbox/user-keys");
    if (!reply || !(*reply)["keys"].isArray()) {
        return {false, "the sandbox does not tell its keys"};
    }
    const Json::Value& theirs = (*reply)["keys"];
    const std::vector<SyncKey> ours = StoredKeys();
    const auto same = static_cast<std::size_t>(std::count_if(ours.begin(), ours.end(), [&theirs](const SyncKey& key) {
        return std::any_of(theirs.begin(), theirs.end(),
                           [&key](const Json::Value& entry) { return IsSandboxKey(entry, key); });
    }));
    return {same == ours.size() && same == theirs.size(),
            "uuid and fingerprint of " + std::to_string(same) + " out of " + std::to_string(theirs.size()) + " agree"};
}

StepResult ClearKeys(SessionState&) {
    const std::vector<SyncKey> before = StoredKeys();
    UserSyncKeyService service;
    service.ClearUserSyncKey();
    const std::vector<SyncKey> after = StoredKeys();
    const bool gone =
        std::all_of(after.begin(), after.end(), [](const SyncKey& key) { return key.fingerprint.empty(); });
    const bool kept = std::equal(before.begin(), before.end(), after.begin(), after.end(),
                                 [](const SyncKey& left, const SyncKey& right) { return left.uuid == right.uuid; });
    return {gone && kept && !service.IsSyncDriveKeyInited() && !service.IsCloudPhotoKeyInited(),
            std::string(gone ? "all keys are gone" : "some keys are left") + ", their uuids " +
                (kept ? "stay" : "do not stay")};
}

}  // namespace

std::vector<Step> SyncKeySteps() {
    return {{"sync-keys", "sync keys retrieved", RetrieveKeys}};
}

std::vector<Step> ComparedKeySteps() {
    return {
        {"compare-sync-keys", "sync keys compared with the sandbox's", CompareKeys},
        {"clear-sync-keys", "sync keys cleared", ClearKeys},
    };
}

}  // namespace host
