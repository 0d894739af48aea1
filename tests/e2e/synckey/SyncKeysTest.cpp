#include <EventAdminModule.h>
#include <ParamStore.h>
#include <UserSyncKeyService.h>
#include <openssl/sha.h>
#include <windows.h>
// wincrypt.h comes after windows.h, and dpapi.h after that.
#include <wincrypt.h>
// clang-format off
#include <dpapi.h>
// clang-format on

#include <set>

#include "SandboxSession.h"

namespace {

const char kPublicKey[] = "/KeCloudUserInformationService/v1/keys/publicKey";
const char kKeyList[] = "/KeCloudUserInformationService/v1/keys";

std::string Encoded(const BYTE* bytes, DWORD count, DWORD encoding) {
    std::string text(count * 2 + 2, '\0');
    auto size = static_cast<DWORD>(text.size());
    EXPECT_TRUE(CryptBinaryToStringA(bytes, count, encoding | CRYPT_STRING_NOCRLF, text.data(), &size));
    text.resize(size);
    return text;
}

std::string Fingerprint(const std::uint8_t* key, std::size_t bytes) {
    BYTE digest[SHA256_DIGEST_LENGTH];
    SHA256(key, bytes, digest);
    return Encoded(digest, sizeof(digest), CRYPT_STRING_HEXRAW);
}

// Signed in, without keys.
class SyncKeys : public SandboxSession {
protected:
    SyncKeys() {
        SignInWhole();
        m_record = st_UserInfo{};
    }
    ~SyncKeys() override { m_record = st_UserInfo{}; }

    // What the user record holds and what the platform says of its keys, one text a key.
    std::set<std::string> Received() const {
        const auto row = [](const char* type, const wchar_t* uuid, const std::string& fingerprint) {
            return type + Narrow(uuid) + " " + fingerprint;
        };
        return {row("11/1 ", m_record.driveKeyUuid1, Fingerprint(m_record.driveKey1, 16)),
                row("11/3 ", m_record.driveKeyUuid3, Fingerprint(m_record.driveKey3, 32)),
                row("12/1 ", m_record.photoKeyUuid1, Fingerprint(m_record.photoKey1, 16)),
                row("12/3 ", m_record.photoKeyUuid3, Fingerprint(m_record.photoKey3, 32))};
    }
    std::set<std::string> Expected() {
        std::set<std::string> rows;
        const Json::Value reply = m_sandbox.Control("/sandbox/user-keys");
        for (const Json::Value& key : reply["keys"]) {
            rows.insert(key["dataType"].asString() + "/" + key["keyType"].asString() + " " + key["uuid"].asString() +
                        " " + key["sha256"].asString());
        }
        return rows;
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
    EXPECT_FALSE(m_keys.IsSyncDriveKeyInited() || m_keys.IsCloudPhotoKeyInited());
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

TEST_F(SyncKeys, ALegacySignInIsTakenOver) {
    const std::wstring refreshToken = m_service->GetCurrentRT();
    std::string plaintext = Narrow(refreshToken) + "2021-05-06 07:08:09";
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    ASSERT_TRUE(CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output));
    Configure(R"({"legacyItems":{"0":")" + Encoded(output.pbData, output.cbData, CRYPT_STRING_BASE64) + "\"}}");
    LocalFree(output.pbData);
    m_service->Clear();
    EXPECT_EQ(m_service->GetOldVersionUserId(), L"260086000100000001") << LogText();
    EXPECT_EQ(m_service->GetCurrentRT(), refreshToken);
    EXPECT_EQ(LogText().find(Narrow(refreshToken)), std::string::npos);
    Configure(R"({"legacyItems":{"0":""}})");
}
