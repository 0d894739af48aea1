#include <EventAdminModule.h>
#include <ParamStore.h>
#include <UserSyncKeyService.h>

#include <algorithm>
#include <array>

#include "platform/SandboxClient.h"
#include "steps/Steps.h"
#include "steps/SyncKeys.h"
#include "text/FieldText.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// Counts the two events of the sync keys while it lives. The hub runs listeners on the raising thread, which is ours.
class KeyEvents {
public:
    KeyEvents() {
        EventAdminModule& hub = *EventAdminModule::GetInstance();
        m_subscriptions = {hub.Subscribe(SuiteEvent::kSyncDriveKeyOk, [this](SuiteEvent) { ++m_drive; }),
                           hub.Subscribe(SuiteEvent::kCloudPhotoKeyOk, [this](SuiteEvent) { ++m_photo; })};
    }
    ~KeyEvents() {
        for (const EventAdminModule::SubscriptionId id : m_subscriptions) {
            EventAdminModule::GetInstance()->Unsubscribe(id);
        }
    }
    KeyEvents(const KeyEvents&) = delete;
    KeyEvents& operator=(const KeyEvents&) = delete;

    // Whether each came as often as given.
    bool Each(int count) const { return m_drive == count && m_photo == count; }
    std::string Text() const {
        return "events SyncDriveKeyOk " + std::to_string(m_drive) + ", CloudPhotoKeyOk " + std::to_string(m_photo);
    }

private:
    int m_drive = 0;
    int m_photo = 0;
    std::array<EventAdminModule::SubscriptionId, 2> m_subscriptions{};
};

std::vector<SyncKey> StoredKeys() {
    return SyncKeysOf(GlobalParamWrapper::GetInstance()->GetUserInfo());
}

Table KeyTable() {
    Table table{{"key", "uuid", "fingerprint"}};
    for (const SyncKey& key : StoredKeys()) {
        table.rows.push_back(
            {key.name, TextOrNone(ToWide(key.uuid)), key.fingerprint.empty() ? "none" : key.fingerprint});
    }
    return table;
}

StepResult RetrieveKeys(SessionState&) {
    UserSyncKeyService service;
    const bool before = service.IsSyncDriveKeyInited() && service.IsCloudPhotoKeyInited();
    const KeyEvents events;
    const bool complete = service.InitUserSyncKey();
    const bool told = events.Each(before ? 0 : 1);
    const std::string detail = !complete ? SeeLog("not all keys came") + "; "
                               : before  ? "both were there, nothing was asked; "
                                         : "";
    return {complete && told, detail + events.Text(), {}, KeyTable()};
}

bool IsSandboxKey(const Json::Value& entry, const SyncKey& key) {
    return entry.isObject() && TextMember(entry, "dataType") == key.dataType &&
           entry["keyType"] == Json::Value(key.keyType) && TextMember(entry, "uuid") == key.uuid &&
           TextMember(entry, "sha256") == key.fingerprint;
}

// The sandbox tells uuid and fingerprint of the keys that it has for the account.
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
