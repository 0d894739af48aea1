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

std::string Fingerprint(const std::uint8_t* key, std::size_t bytes) {
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(key, bytes, digest);
    std::string text;
    for (const unsigned char byte : digest) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

// Signed in, without keys, with a listener for both events.
class SyncKeys : public SandboxSession {
protected:
    SyncKeys() {
        SignInWhole();
        m_record = st_UserInfo{};
        EventAdminModule& hub = *EventAdminModule::GetInstance();
        m_drive = hub.Subscribe(SuiteEvent::kSyncDriveKeyOk, [this](SuiteEvent) { m_events += "drive "; });
        m_photo = hub.Subscribe(SuiteEvent::kCloudPhotoKeyOk, [this](SuiteEvent) { m_events += "photo "; });
    }
    ~SyncKeys() override {
        EventAdminModule::GetInstance()->Unsubscribe(m_drive);
        EventAdminModule::GetInstance()->Unsubscribe(m_photo);
        m_record = st_UserInfo{};
    }

    // What the user record holds and what the platform says of its keys, one text a key.
    std::set<std::string> Received() const {
        const auto row = [](const char* type, const wchar_t* uuid, const std::string& fingerprint) {
            const std::wstring id = uuid;
            return type + std::string(id.begin(), id.end()) + " " + fingerprint;
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

    int Requests(const char* endpoint) {
        return m_sandbox.Control("/sandbox/statistics")["requests"][endpoint].asInt();
    }

    st_UserInfo& m_record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    UserSyncKeyService m_keys;
    std::string m_events;

private:
    EventAdminModule::SubscriptionId m_drive = 0;
    EventAdminModule::SubscriptionId m_photo = 0;
};

}  // namespace

TEST_F(SyncKeys, ArriveAsThePlatformHasThem) {
    EXPECT_TRUE(m_keys.InitUserSyncKey()) << LogText();
    EXPECT_EQ(Received(), Expected());
    EXPECT_EQ(m_events, "drive photo ");
    EXPECT_TRUE(m_keys.InitUserSyncKey());
    EXPECT_EQ(Requests(kPublicKey), 1);
    EXPECT_EQ(Requests(kKeyList), 2);
    EXPECT_EQ(m_events, "drive photo ");
    m_keys.ClearUserSyncKey();
    EXPECT_FALSE(m_keys.IsSyncDriveKeyInited() || m_keys.IsCloudPhotoKeyInited());
    EXPECT_NE(m_record.driveKeyUuid1[0], L'\0');
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
        Json::Value variant;
        variant["variant"] = row.variant;
        m_sandbox.Control("/sandbox/user-keys", variant);
        EXPECT_EQ(m_keys.InitUserSyncKey(), row.drive && row.photo) << row.variant;
        EXPECT_EQ(m_keys.IsSyncDriveKeyInited(), row.drive) << row.variant;
        EXPECT_EQ(m_keys.IsCloudPhotoKeyInited(), row.photo) << row.variant;
    }
}

TEST_F(SyncKeys, FaultsOfTheServerStoreNothing) {
    const struct {
        const char* endpoint;
        const char* fault;
        bool photo;  // the second list is asked for all the same
    } rows[] = {{kPublicKey, R"({"status":201})", false},      {kPublicKey, R"({"garbage":true})", false},
                {kPublicKey, R"({"wrongTypes":true})", false}, {kPublicKey, R"({"cutAfter":9})", false},
                {kPublicKey, R"({"oversize":50000})", false},  {kKeyList, R"({"status":503})", true},
                {kKeyList, R"({"garbage":true})", true},       {kKeyList, R"({"wrongTypes":true})", true},
                {kKeyList, R"({"body":"[]"})", true},          {kKeyList, R"({"contentLength":99999})", true}};
    for (const auto& row : rows) {
        m_record = st_UserInfo{};
        m_events.clear();
        m_sandbox.Fault(row.endpoint, row.fault);
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << row.fault;
        EXPECT_FALSE(m_keys.IsSyncDriveKeyInited()) << row.fault;
        EXPECT_EQ(m_keys.IsCloudPhotoKeyInited(), row.photo) << row.endpoint << row.fault;
        EXPECT_EQ(m_events, row.photo ? "photo " : "") << row.fault;
    }
    for (const char* publicKey : {"*", "QUJD", "-_-_"}) {
        Json::Value served;
        served["publicKey"] = publicKey;
        m_sandbox.Control("/sandbox/server-key", served);
        m_record = st_UserInfo{};
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << "the platform cannot open a token made for " << publicKey;
    }
    m_sandbox.Control("/sandbox/server-key", Json::Value(Json::objectValue));
    EXPECT_TRUE(m_keys.InitUserSyncKey()) << LogText();
}

TEST_F(SyncKeys, AThousandTokensOpenAtThePlatformAndNoNonceRepeats) {
    constexpr int kRuns = 1000;
    for (int run = 0; run < kRuns; ++run) {
        m_keys.ClearUserSyncKey();
        m_record.photoKey3[0] = 1;  // the drive's list is enough
        ASSERT_TRUE(m_keys.InitUserSyncKey()) << LogText();
    }
    const Json::Value exchanges = m_sandbox.Control("/sandbox/user-keys")["exchanges"];
    EXPECT_EQ(exchanges["tokens"].asInt(), kRuns);
    EXPECT_EQ(exchanges["distinctNonces"].asInt(), kRuns);
    EXPECT_EQ(exchanges["distinctTemporaryKeys"].asInt(), kRuns);
}

TEST_F(SyncKeys, ALegacySignInIsTakenOver) {
    const std::wstring refreshToken = m_service->GetCurrentRT();
    std::string plaintext;
    for (const wchar_t character : refreshToken + L"2021-05-06 07:08:09") {
        plaintext += static_cast<char>(character);
    }
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    ASSERT_TRUE(CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output));
    std::string text(output.cbData * 2, '\0');
    auto size = static_cast<DWORD>(text.size());
    ASSERT_TRUE(CryptBinaryToStringA(output.pbData, output.cbData, CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF,
                                     text.data(), &size));
    text.resize(size);
    LocalFree(output.pbData);

    UseLegacyItem(text);
    m_service->Clear();
    EXPECT_EQ(m_service->GetOldVersionUserId(), L"260086000100000001") << LogText();
    EXPECT_EQ(m_service->GetCurrentRT(), refreshToken);
    EXPECT_EQ(LogText().find(plaintext.substr(0, refreshToken.size())), std::string::npos);
    UseLegacyItem("");
}
