#include "UserSyncKeyService.h"

#include <HttpLib.h>
#include <ParamStore.h>

#include <algorithm>
#include <cstring>

#include "KeyServerPeer.h"
#include "ServiceFixture.h"
#include "synckey/Sha256Hex.h"

class UserSyncKeyServiceAccess {
public:
    static bool Encode(const std::string& encryptedKey, const std::string& digest, const std::string& uuid, int keyType,
                       const Bytes& temporaryKey, const std::wstring& dataType) {
        return UserSyncKeyService().encodeUserKey(encryptedKey, digest, uuid, keyType, temporaryKey, dataType);
    }
};

namespace {

const Bytes kTemporaryKey(16, 0x11);
const std::string kChecked = "log 10 2 UserSyncKeyService::encodeUserKey check user key sha256 success, keyType:";
const std::string kRefused = "log 10 5 UserSyncKeyService::encodeUserKey check user key sha256 fail, keyType:";

Bytes DigestOf(const Bytes& bytes) { return FromHex(userauth::Sha256Hex(bytes)); }

std::string Entry(const std::string& keyType, const Bytes& temporaryKey, const Bytes& key, const std::string& uuid) {
    return R"({"keyType":)" + keyType + R"(,"encryptedKey":")" + KeyServerPeer::Wrap(temporaryKey, key) +
           R"(","keySHA256":")" + KeyServerPeer::Wrap(temporaryKey, DigestOf(key)) + R"(","keyUuid":")" + uuid +
           R"("})";
}

template <typename Record>
std::size_t Zeros(const Record& record) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
    return static_cast<std::size_t>(std::count(bytes, bytes + sizeof(record), 0));
}

class UserSyncKeyServiceTest : public testing::Test {
protected:
    UserSyncKeyServiceTest() {
        m_record = {};
        Singleton().SetCurrentAT(L"at");
        Singleton().SetCurrrentUserID(L"me");
        Recording() = SuiteRecording();
    }

    ~UserSyncKeyServiceTest() override {
        Recording() = SuiteRecording();
        m_record = {};
    }

    // Answers with the public key, then with what lists makes for a data type and the temporary key of the exchange.
    void Serve(std::function<std::string(const std::string& dataType, const Bytes& temporaryKey)> lists) {
        Recording().duringExchange = [this, lists = std::move(lists)](const std::wstring& url) {
            if (url.find(L"publicKey") != std::wstring::npos) {
                m_publicKeyHeaders = Recording().requestHeaders;
                Recording().replies = {
                    {200, R"({"version":)" + m_version + R"(,"publicKey":")" + m_peer.PublicKeyText() + "\"}", {}}};
                return;
            }
            const auto key = m_peer.UnwrapTemporaryKey(Narrow(Recording().requestHeaders.at(L"x-zv-tempKey")));
            ASSERT_TRUE(key);
            m_asked += Narrow(url.substr(url.size() - 2)) + " ";
            Recording().replies = {{200, lists(Narrow(url.substr(url.size() - 2)), *key), {}}};
        };
    }

    const InstalledSdk m_sdk{"scripted-sdk.dll"};  // the singleton is made here when this test is the first of all
    KeyServerPeer m_peer;
    st_UserInfo& m_record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    UserSyncKeyService m_keys;
    Headers m_publicKeyHeaders;
    std::string m_asked;  // the data types of the lists
    std::string m_version = R"("v\u00e9")";
};

}  // namespace

TEST_F(UserSyncKeyServiceTest, BothKeysArriveAndAreAnnounced) {
    Serve([](const std::string& dataType, const Bytes& temporaryKey) {
        const auto mark = static_cast<unsigned char>(dataType[1]);
        return R"({"keys":[)" + Entry("1", temporaryKey, Bytes(16, mark), "short-" + dataType) + "," +
               Entry("3", temporaryKey, Bytes(32, mark), "long-" + dataType) + "]}";
    });
    EXPECT_TRUE(m_keys.InitUserSyncKey());
    EXPECT_EQ(std::memcmp(m_record.driveKey3, std::string(32, '1').c_str(), 33), 0);
    EXPECT_EQ(std::memcmp(m_record.photoKey1, std::string(16, '2').c_str(), 17), 0);
    EXPECT_EQ(Recording().TakeOutcome(), (Lines{kChecked + "1", kChecked + "3", kChecked + "1", kChecked + "3",
                                                "hub SyncDriveKeyOk", "hub CloudPhotoKeyOk"}));
    const Headers common = {{L"Authorization", L"Bearer at"},
                            {L"unionID", L"me"},
                            {L"userId", L"me"},
                            {L"x-zv-app-package-name", L"com.zorvan.cloud.pc"},
                            {L"x-zv-app-id", L"104862915"}};
    Headers expected = common;
    expected[L"x-zv-tempKeyEncType"] = L"EC_256";
    EXPECT_EQ(m_publicKeyHeaders, expected);
    expected = common;
    expected.insert({{L"x-zv-clientTrustMode", L"1"},
                     {L"x-zv-keyEncType", L"AES_128"},
                     {L"x-zv-tempKeyEncType", L"ECDH"},
                     {L"x-zv-keyVersion", L"v\u00E9"},
                     {L"x-zv-tempKey", Recording().requestHeaders.at(L"x-zv-tempKey")}});
    EXPECT_EQ(Recording().requestHeaders, expected);
    EXPECT_EQ(Recording().url, L"https://user.example.com/KeCloudUserInformationService/v1/keys?dataType=12");

    Recording().duringExchange = [](const std::wstring&) { FAIL() << "nothing is asked when both are there"; };
    EXPECT_TRUE(m_keys.InitUserSyncKey());
    EXPECT_EQ(Recording().TakeOutcome(), Lines{});
    for (auto* const lastByte :
         {&m_record.driveKey1[16], &m_record.driveKey3[32], &m_record.photoKey1[16], &m_record.photoKey3[32]}) {
        *lastByte = 1;
    }
    m_keys.ClearUserSyncKey();
    EXPECT_FALSE(m_keys.IsSyncDriveKeyInited());
    EXPECT_FALSE(m_keys.IsCloudPhotoKeyInited());
    EXPECT_EQ(Zeros(m_record.driveKey1) + Zeros(m_record.photoKey1), 2 * 17U);
    EXPECT_EQ(Zeros(m_record.driveKey3) + Zeros(m_record.photoKey3), 2 * 33U);
    EXPECT_STREQ(m_record.driveKeyUuid1, L"short-11") << "uuids stay";
    EXPECT_STREQ(m_record.driveKeyUuid3, L"long-11");
    EXPECT_STREQ(m_record.photoKeyUuid1, L"short-12");
    EXPECT_STREQ(m_record.photoKeyUuid3, L"long-12");
}

TEST_F(UserSyncKeyServiceTest, AKeyThatWasThereIsNotAskedForButAnnounced) {
    const auto exchange = [](const std::string& rest, const std::string& headers) {
        return Lines{"http SetUrl https://user.example.com/KeCloudUserInformationService/v1/keys" + rest} +
               Lines{"http SetLogFunction ", "http SetHttpRequestMethod 0", "http SetHeaders " + headers,
                     "http SetCertPath ",    "http SetPostData null\n",     "http Request -1"} +
               Lines{"log 10 0 UserAuthRequest::SendWebRequest::<lambda_4>::operator () progress text"};
    };
    const struct {
        bool drive;  // whether the drive's key is there; the list has the other's, of the type that does not count
        std::string dataType, checked, announced;
    } rows[] = {{true, "12", "1", "hub SyncDriveKeyOk"}, {false, "11", "3", "hub CloudPhotoKeyOk"}};
    for (const auto& row : rows) {
        m_record = {};
        (row.drive ? m_record.driveKey1[16] : m_record.photoKey3[32]) = 1;
        m_asked.clear();
        Recording().journal.clear();
        Serve([&row](const std::string&, const Bytes& temporaryKey) {
            return R"({"keys":[)" + Entry(row.checked, temporaryKey, Bytes(row.drive ? 16 : 32, 1), "u") + "]}";
        });
        EXPECT_FALSE(m_keys.InitUserSyncKey());
        EXPECT_EQ(m_asked, row.dataType + " ");
        EXPECT_EQ(m_keys.IsSyncDriveKeyInited(), row.drive);
        EXPECT_EQ(m_keys.IsCloudPhotoKeyInited(), !row.drive);
        EXPECT_EQ(Recording().journal, (exchange("/publicKey", "6") + exchange("?dataType=" + row.dataType, "10") +
                                        Lines{kChecked + row.checked, row.announced}));
    }
}

TEST_F(UserSyncKeyServiceTest, NoKeyWithoutAUsablePublicKey) {
    for (const ScriptedReply& reply : std::vector<ScriptedReply>{
             {201, "{}", {}}, {401, "{}", {}}, {200, "", {}}, {200, "7", {}}, {kHttpTimeout, "", {}}}) {
        Recording().journal.clear();
        Recording().replies = {reply};
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << reply.code << " " << reply.body;
        EXPECT_EQ(Recording().Lines("http Request").size(), 1U) << "nothing more is asked";
        EXPECT_EQ(Recording().TakeOutcome(), Lines{});
    }
    // Any JSON goes on, with a token that nobody can open.
    for (const char* body : {"{}", "[]", R"({"publicKey":5,"version":{}})"}) {
        Recording().journal.clear();
        Recording().replies = {{200, body, {}}, {201, R"({"keys":[]})", {}}, {200, "oops", {}}};
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << body;
        EXPECT_EQ(Recording().TakeOutcome(),
                  (Lines{"log 10 5 UserSyncKeyService::getUserKeyList get Keylist fail!",
                         "log 10 5 UserSyncKeyService::getUserKeyList convert jsoncontent fail!"}))
            << body;
    }
}

TEST_F(UserSyncKeyServiceTest, NumbersAreReadAsTexts) {
    m_version = "7";
    Serve([](const std::string&, const Bytes& temporaryKey) {
        std::string entry = Entry("1", temporaryKey, Bytes(16, 1), "number");
        return R"({"keys":[)" + entry.replace(entry.find("\"number\""), 8, "42") + "]}";
    });
    EXPECT_FALSE(m_keys.InitUserSyncKey()) << "no key for the photo library";
    EXPECT_EQ(Recording().requestHeaders.at(L"x-zv-keyVersion"), L"7");
    EXPECT_STREQ(m_record.driveKeyUuid1, L"42");
}

TEST_F(UserSyncKeyServiceTest, WhatAListMayHold) {
    const Bytes key(16, 5);
    const struct {
        const char* name;
        std::function<std::string(const Bytes&)> list;
        Lines outcome;
        bool stored;
    } rows[] = {
        {"array at the root", [](const Bytes&) { return "[]"; }, {}, false},
        {"keys is no array", [](const Bytes&) { return R"({"keys":{"0":1}})"; }, {}, false},
        {"no entries", [](const Bytes&) { return R"({"keys":[]})"; }, {}, false},
        {"foreign types",
         [&](const Bytes& t) {
             return R"({"keys":[1,null,[],)" + Entry("2", t, key, "u") + "," + Entry("\"1\"", t, key, "u") + "," +
                    Entry("1.0", t, key, "u") + "," + Entry("true", t, key, "u") + "]}";
         },
         {},
         false},
        {"members of other types",
         [&](const Bytes&) { return R"({"keys":[{"keyType":1,"encryptedKey":{},"keySHA256":[],"keyUuid":7}]})"; },
         {kRefused + "1"},
         false},
        {"digest of another key",
         [&](const Bytes& t) {
             std::string entry = Entry("1", t, key, "u");
             const std::size_t at = entry.find("keySHA256\":\"") + 12;
             entry.replace(at, 80, KeyServerPeer::Wrap(t, DigestOf(Bytes(16, 6))));
             return R"({"keys":[)" + entry + "," + Entry("1", t, key, "u") + "]}";
         },
         {kRefused + "1"},
         false},
        {"an earlier entry stays",
         [&](const Bytes& t) {
             return R"({"keys":[)" + Entry("1", t, key, "u") + R"(,{"keyType":3},)" + Entry("3", t, key, "u") + "]}";
         },
         {kChecked + "1", kRefused + "3", "hub SyncDriveKeyOk"},
         true},
    };
    for (const auto& row : rows) {
        m_record = {};
        m_record.photoKey1[0] = 1;
        Recording().journal.clear();
        Serve([&row](const std::string& dataType, const Bytes& temporaryKey) {
            return dataType == "11" ? row.list(temporaryKey) : std::string(R"({"keys":[]})");
        });
        EXPECT_FALSE(m_keys.InitUserSyncKey()) << row.name;
        EXPECT_EQ(Recording().TakeOutcome(), row.outcome) << row.name;
        EXPECT_EQ(m_keys.IsSyncDriveKeyInited(), row.stored) << row.name;
    }
}

TEST_F(UserSyncKeyServiceTest, EachEntryGoesIntoItsOwnFields) {
    const std::string longestUuid(32, 'u');
    const Bytes key(16, 1);
    const struct {
        const char* name;
        Bytes key, digestOf;
        int keyType;
        std::wstring dataType;
        std::string uuid;
        bool result;
        std::size_t changedBytes;  // of the record
    } rows[] = {
        {"long uuid fits", key, key, 1, kSyncDriveDataType, longestUuid, true, 16 + 32},
        {"longer uuid is left out", Bytes(32, 1), Bytes(32, 1), 3, kCloudPhotoDataType, longestUuid + "u", true, 32},
        {"uuid ends at its zero", key, key, 1, kCloudPhotoDataType, "abc" + std::string(40, '\0') + "d", true, 16 + 3},
        {"key beyond its field", Bytes(32, 1), Bytes(32, 1), 1, kSyncDriveDataType, "uuid", true, 0},
        {"short key in the long field", key, key, 3, kSyncDriveDataType, "uuid", true, 16 + 4},
        {"other key type", key, key, 2, kSyncDriveDataType, "uuid", true, 0},
        {"other data type", key, key, 1, L"13", "uuid", true, 0},
        {"longer data type", key, key, 1, L"11 ", "uuid", true, 0},
        {"another longer one", key, key, 1, L"123", "uuid", true, 0},
        {"uuid in UTF-8", key, key, 1, kSyncDriveDataType, "\xC3\xA9", true, 16 + 1},
        {"digest of another key", key, Bytes(16, 2), 1, kSyncDriveDataType, "uuid", false, 0},
        {"failed decryption with its digest", {}, {0}, 1, kSyncDriveDataType, "uuid", true, 0},
    };
    for (const auto& row : rows) {
        m_record = {};
        const std::string encrypted = row.key.empty() ? "AAAA" : KeyServerPeer::Wrap(kTemporaryKey, row.key);
        const std::string digest = KeyServerPeer::Wrap(kTemporaryKey, DigestOf(row.digestOf));
        EXPECT_EQ(
            UserSyncKeyServiceAccess::Encode(encrypted, digest, row.uuid, row.keyType, kTemporaryKey, row.dataType),
            row.result)
            << row.name;
        EXPECT_EQ(sizeof(m_record) - Zeros(m_record), row.changedBytes) << row.name;
    }
    // What the field held before does not show behind a shorter uuid.
    std::fill_n(m_record.driveKeyUuid1, 32, L'x');
    EXPECT_TRUE(UserSyncKeyServiceAccess::Encode(KeyServerPeer::Wrap(kTemporaryKey, key),
                                                 KeyServerPeer::Wrap(kTemporaryKey, DigestOf(key)), "u", 1,
                                                 kTemporaryKey, kSyncDriveDataType));
    EXPECT_STREQ(m_record.driveKeyUuid1, L"u");
}
