#include <EventAdminModule.h>
#include <ParamStore.h>
#include <UserSyncKeyService.h>
#include <openssl/sha.h>

#include "Bytes.h"
#include "SandboxSession.h"

namespace {

const char kPublicKey[] = "/KeCloudUserInformationService/v1/keys/publicKey";
const char kKeyList[] = "/KeCloudUserInformationService/v1/keys";

Bytes Fingerprint(const std::uint8_t* key, std::size_t bytes) {
    Bytes digest(SHA256_DIGEST_LENGTH);
    SHA256(key, bytes, digest.data());
    return digest;
}

// Signed in, without keys.
class SyncKeys : public SandboxSession {
protected:
    SyncKeys() {
        SignInWhole();
        m_record = st_UserInfo{};
    }
    ~SyncKeys() override { m_record = st_UserInfo{}; }

    // By data type and key type: uuid and fingerprint of a key, as the user record and as the platform has it.
    using KeyTable = std::map<std::string, std::pair<std::string, Bytes>>;

    KeyTable Received() const {
        return {{"11/1", {Narrow(m_record.driveKeyUuid1), Fingerprint(m_record.driveKey1, 16)}},
                {"11/3", {Narrow(m_record.driveKeyUuid3), Fingerprint(m_record.driveKey3, 32)}},
                {"12/1", {Narrow(m_record.photoKeyUuid1), Fingerprint(m_record.photoKey1, 16)}},
                {"12/3", {Narrow(m_record.photoKeyUuid3), Fingerprint(m_record.photoKey3, 32)}}};
    }
    KeyTable Expected() {
        KeyTable keys;
        const Json::Value reply = m_sandbox.Control("/sandbox/user-keys");
        for (const Json::Value& key : reply["keys"]) {
            keys[key["dataType"].asString() + "/" + key["keyType"].asString()] = {key["uuid"].asString(),
                                                                                  FromHex(key["sha256"].asString())};
        }
        return keys;
    }

    st_UserInfo& m_record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    UserSyncKeyService m_keys;
};

}  // namespace

TEST_F(SyncKeys, ArriveAsThePlatformHasThem) {
    EventAdminModule& hub = *EventAdminModule::GetInstance();
    std::string events;
    const auto drive = hub.Subscribe(SuiteEvent::kSyncDriveKeyOk, [&](SuiteEvent) { events += "drive "; });
    const auto photo = hub.Subscribe(SuiteEvent::kCloudPhotoKeyOk, [&](SuiteEvent) { events += "photo "; });
    EXPECT_TRUE(m_keys.InitUserSyncKey()) << LogText();
    EXPECT_EQ(Received(), Expected());
    EXPECT_EQ(events, "drive photo ");
    EXPECT_TRUE(m_keys.InitUserSyncKey());
    EXPECT_EQ(m_sandbox.Requests(kPublicKey), 1);
    EXPECT_EQ(m_sandbox.Requests(kKeyList), 2);
    EXPECT_EQ(events, "drive photo ");
    m_keys.ClearUserSyncKey();
    EXPECT_FALSE(m_keys.IsSyncDriveKeyInited());
    EXPECT_FALSE(m_keys.IsCloudPhotoKeyInited());
    EXPECT_NE(m_record.driveKeyUuid1[0], L'\0');
    EXPECT_TRUE(hub.Unsubscribe(drive) && hub.Unsubscribe(photo));
}

TEST_F(SyncKeys, ListsThatAreNotQuiteRight) {
    const struct {
        const char* variant;
        bool drive;
        bool photo;
    } rows[] = {{"wrongDigest", false, false},      {"badBlob", false, false}, {"foreignTypes", true, true},
                {"longKeyUnderType1", false, true}, {"longUuid", true, true},  {"oneByteDigest", false, false},
                {"cutDigest", false, false},        {"large", true, true},     {"shortUuid", true, true}};
    for (const auto& row : rows) {
        m_record = st_UserInfo{};
        m_sandbox.Control("/sandbox/user-keys", std::string(R"({"variant":")") + row.variant + "\"}");
        EXPECT_EQ(m_keys.InitUserSyncKey(), row.drive && row.photo) << row.variant;
        EXPECT_EQ(m_keys.IsSyncDriveKeyInited(), row.drive) << row.variant;
        EXPECT_EQ(m_keys.IsCloudPhotoKeyInited(), row.photo) << row.variant;
    }
    for (const char* publicKey : {"*", "QUJD", "-_-_"}) {
        m_sandbox.Control("/sandbox/server-key", std::string(R"({"publicKey":")") + publicKey + "\"}");
        m_record = st_UserInfo{};
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << "the platform cannot open a token made for " << publicKey;
    }
    m_sandbox.Control("/sandbox/server-key", "{}");
    EXPECT_TRUE(m_keys.InitUserSyncKey()) << LogText();
}
