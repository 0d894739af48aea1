#include <HttpLib.h>
#include <ParamStore.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include "FailingAllocations.h"
#include "KeyServerPeer.h"
#include "LegacyItem.h"
#include "ServiceFixture.h"
#include "UserSyncKeyService.h"
#include "synckey/Sha256Hex.h"

namespace {

using Access = UserAuthServiceAccess;

// What a caller hands over by value.
template <typename Value>
Value Copied(const Value& value) {
    const Uncounted uncounted;
    return value;
}

// What a host may see change, piece by piece; what belongs together is one piece.
using State = std::vector<std::string>;

enum class Change {
    kWhole,  // everything is as before, or everything is new
    kPieces  // each piece is as before or new
};

struct Row {
    const char* name;
    std::function<bool(UserAuthService& service)> operation;  // true: it says that it has done its work
    std::vector<std::string> replies;
    Change change = Change::kWhole;
    bool throws = false;  // as the header says
};

class OutOfMemory : public ServiceTest {
protected:
    OutOfMemory() {
        Singleton();
        m_config = ProgramFolder() / "ZMSCoreConfig.json";
    }
    ~OutOfMemory() override {
        std::error_code ignored;
        std::filesystem::remove(m_config, ignored);
        m_record = {};
        Recording() = SuiteRecording();
    }

    void Prepare(const Row& row) {
        Recording() = SuiteRecording();
        Recording().appDataFolder = m_config.parent_path().wstring();
        Recording().legacyItem = m_legacyItem;
        m_record = {};
        m_sent.clear();
        m_devices.clear();
        m_service->SetCurrentAT(L"the former access token");
        m_service->SetCurrentRT(L"the former refresh token");
        m_service->SetCurrentUserInfo(L"the former user id", L"the former name", L"the former portrait link", 1);
        m_service->SetCurrentUserHeadImageLocalPath(L"the former portrait path");
        Singleton().SetCurrentAT(L"the former access token");
        m_service->SetRealUserKey(std::vector<std::uint8_t>(32, 1));
        Access::ResultCode(*m_service) = Access::ResultDescription(*m_service) = "the former result of all";
        Access::Country(*m_service) = L"the former country";
        WriteFile(m_config, R"({"the former":"configuration"})");
        Recording().duringExchange = [this, &row](const std::wstring& url) { Answer(row, url); };
    }

    // Takes the request down and answers it. The requests of one operation are answered in order; those for keys, of
    // which one may be left out, as the key server answers.
    void Answer(const Row& row, const std::wstring& url) {
        const Uncounted uncounted;
        std::string sent = Narrow(url + L"\n" + Recording().postData);
        for (const auto& [name, value] : Recording().requestHeaders) {
            sent += "\n" + Narrow(name) + ": " + (name == L"x-zv-tempKey" ? "a token" : Narrow(value));
        }
        std::transform(sent.begin(), sent.end(), sent.begin(), [](char c) { return c >= '0' && c <= '9' ? '#' : c; });
        const std::size_t number = m_sent.size();
        m_sent.push_back(sent);
        if (url.find(L"/v1/keys") == std::wstring::npos) {
            Recording().replies = {{200, number < row.replies.size() ? row.replies[number] : "{}", {}}};
        } else if (url.find(L"publicKey") != std::wstring::npos) {
            Recording().replies = {{200, R"({"version":"1","publicKey":")" + m_peer.PublicKeyText() + "\"}", {}}};
        } else {
            Recording().replies = {{200, KeyList(Narrow(Recording().requestHeaders.at(L"x-zv-tempKey"))), {}}};
        }
    }

    std::string KeyList(const std::string& token) {
        Bytes secret;
        const auto key = m_peer.UnwrapTemporaryKey(token, &secret);
        if (!key) {
            return "{}";
        }
        m_exchanged = {{"the temporary key", {key->begin(), key->end()}},
                       {"the shared secret", {secret.begin(), secret.end()}}};
        std::string entries;
        for (const std::size_t bytes : {16, 32}) {
            const Bytes plain(bytes, 0x5A);
            entries += std::string(entries.empty() ? "" : ",") + R"({"keyType":)" + (bytes == 16 ? "1" : "3") +
                       R"(,"encryptedKey":")" + KeyServerPeer::Wrap(*key, plain) + R"(","keySHA256":")" +
                       KeyServerPeer::Wrap(*key, FromHex(userauth::Sha256Hex(plain))) +
                       R"(","keyUuid":"0123456789abcdef0123456789abcdef"})";
        }
        return R"({"keys":[)" + entries + "]}";
    }

    std::string LastPush(const std::string& setter) const {
        std::string last;
        for (const std::string& line : Recording().Lines("store " + setter)) {
            last = line;
        }
        return last;
    }

    State StateNow() {
        UserAuthService& service = *m_service;
        std::string lists = std::to_string(m_devices.size()) + " devices, modules";
        for (const std::wstring& module : service.GetValidModule()) {
            lists += " " + Narrow(module);
        }
        State state = {
            Narrow(service.GetCurrentAT()) + " " + LastPush("SetCurrentAt"),
            Narrow(service.GetCurrentRT()) + " " + LastPush("SetCurrentRt"),
            Narrow(service.GetCurrentUserID() + L" " + service.GetCurrentUserName() + L" " +
                   service.GetCurrentUserHeadImageUrl()) +
                std::to_string(service.GetCurrentUserAccountBrandID()) + LastPush("SetUserID"),
            Narrow(service.GetCurrentUserHeadImageLocalPath()),
            service.GetCountryCode(),
            std::to_string(Access::Expires(service)) + Access::ResultDescription(service),
            Access::ResultCode(service) + std::to_string(Access::ApplicationExpires(service)) + LastPush("SetAppAT"),
            LastPush("SetAtIsExpired"),
            service.GetLanguageType() + (service.GetCurrentPriviledge() ? " privileged" : "") +
                (service.GetClientLogReportStatus() ? " reported" : ""),
            lists + (service.IsActiveAccount() ? " active" : "") + (service.IsAvailableCountry() ? " available" : ""),
            std::to_string(service.GetRealUserKey().size() + service.GetRealUserKey().front()),
            ReadFile(m_config),
        };
        AddKey(state, m_record.driveKey1, m_record.driveKeyUuid1);
        AddKey(state, m_record.driveKey3, m_record.driveKeyUuid3);
        AddKey(state, m_record.photoKey1, m_record.photoKeyUuid1);
        AddKey(state, m_record.photoKey3, m_record.photoKeyUuid3);
        return state;
    }

    template <std::size_t Size>
    static void AddKey(State& state, const std::uint8_t (&key)[Size], const wchar_t (&uuid)[33]) {
        state.push_back(std::to_string(std::count(key, key + Size, 0x5A)) + " " + Narrow(uuid));
    }

    // Runs the row once; returns how many allocations failed, and looks at what came of it.
    int Run(const Row& row, Allocator allocator, int number, bool lasting) {
        Prepare(row);
        bool done = false;
        int failed = 0;
        {
            const FailingAllocations failing(allocator, number, lasting);
            try {
                done = row.operation(*m_service);
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(row.throws) << "an exception leaves it";
            } catch (...) {
                ADD_FAILURE() << "another exception leaves it";
            }
            failed = failing.Failed();
        }
        SRWLOCK* const lock = Access::NativeLock(*m_service);
        const bool free = TryAcquireSRWLockShared(lock);
        EXPECT_TRUE(free) << "the lock stays held";
        if (free) {
            ReleaseSRWLockShared(lock);
        }
        m_done = done;
        return failed;
    }

    void ExpectOldOrNew(const Row& row, const State& before, const State& after, bool lasting) {
        const State now = StateNow();
        EXPECT_TRUE(!m_done || now == after || allocatorIsOpenSsl) << "it says that it is done";
        if (row.change == Change::kWhole && !lasting) {
            EXPECT_TRUE(now == before || now == after) << testing::PrintToString(now);
        }
        for (std::size_t piece = 0; piece < now.size(); ++piece) {
            EXPECT_TRUE(now[piece] == before[piece] || now[piece] == after[piece]) << now[piece];
        }
    }

    static int Findings() {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    bool allocatorIsOpenSsl = false;
    bool m_done = false;
    std::vector<std::string> m_sent;
    std::vector<DeviceTag> m_devices;
    const std::wstring m_legacyItem = Wide(LegacyItem("the legacy refresh token" + kLegacyTimeStamp));
    std::filesystem::path m_config;
    KeyServerPeer m_peer;
    std::map<std::string, std::string> m_exchanged;  // by the last request for keys
    st_UserInfo& m_record = GlobalParamWrapper::GetInstance()->GetUserInfo();
};

}  // namespace

TEST_F(OutOfMemory, EveryAllocationOfEveryOperationMayFail) {
    std::wstring userId = L"the former user id";
    std::string name = "a name of the logout entry, or a business";
    std::map<std::string, std::string> headers;
    const std::wstring url = L"https://service.example.com/path";
    const std::wstring file = m_config.wstring() + L".vcf";
    const std::vector<std::uint8_t> key(32, 2);
    const std::wstring longText = L"a new text that takes memory of its own";
    const std::string basic =
        R"({"result":0,"userStatus":1,"params":{"funcfg_pc_available":"true","funcfg_drive":"true","funcfg_notes":"true"}})";
    const Row rows[] = {
        {"SetCurrentAT",
         [&](UserAuthService& service) { return service.SetCurrentAT(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrentRT",
         [&](UserAuthService& service) { return service.SetCurrentRT(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrrentUserID",
         [&](UserAuthService& service) { return service.SetCurrrentUserID(longText), true; },
         {},
         Change::kWhole,
         true},
        {"SetCurrentUserInfo",
         [&](UserAuthService& service) { return service.SetCurrentUserInfo(longText, longText, longText, 2), true; },
         {},
         Change::kWhole,
         true},
        {"getters",
         [&](UserAuthService& service) {
             return !(service.GetCurrentAT() + service.GetCurrentRT() + service.GetCurrentUserID()).empty() &&
                    !service.GetCurrentUserName().empty() && !service.GetRealUserKey().empty();
         },
         {},
         Change::kWhole,
         true},
        {"SetRealUserKey", [&](UserAuthService& service) { return service.SetRealUserKey(Copied(key)), true; }, {}},
        {"BuildHeaders",
         [&](UserAuthService& service) {
             return !Access::BuildHeaders(service, HeadType::kCodeExchange, L"trace").empty();
         },
         {},
         Change::kWhole,
         true},
        {"GetTraceID",
         [&](UserAuthService& service) { return !service.GetTraceID(BaseCmd::kRequestAccessToken).empty(); },
         {},
         Change::kWhole,
         true},
        {"RequestAT",
         [&](UserAuthService& service) { return service.RequestAT("", "the authorization code of the test"); },
         {R"({"accessToken":"a new access token, long","refreshToken":"a new refresh token, long","expires":5,
              "registerCountryCode":"a new and long country","result":{"code":"0","desc":"a long description"}})"}},
        {"RequestApplicationAT",
         [&](UserAuthService& service) { return service.RequestApplicationAT(); },
         {R"({"accessToken":"a new application token","expires":7,"result":{"code":"a long code of the result"}})"}},
        {"GetAccessTokenByRefrshToken",
         [&](UserAuthService& service) { return service.GetAccessTokenByRefrshToken(); },
         {R"({"result":{},"token":"a new access token, long"})"},
         Change::kPieces},
        {"GetOldVersionUserId",
         [&](UserAuthService& service) { return !service.GetOldVersionUserId().empty(); },
         {R"({"result":{},"token":"a new access token, long"})", R"({"uid":"a new user id, a long one"})"},
         Change::kPieces},
        {"RequestUserID",
         [&](UserAuthService& service) { return service.RequestUserID(); },
         {R"({"uid":"a new user id, a long one"})"}},
        {"RequestUserIdFromSyncServer",
         [&](UserAuthService& service) { return service.RequestUserIdFromSyncServer(); },
         {R"({"user":{"userId":"a new user id, a long one"}})"}},
        {"RequestUserInfo",
         [&](UserAuthService& service) { return service.RequestUserInfo(); },
         {R"({"userId":"a new user id, a long one","displayName":"a new name, a long one","accountBrand":7})"},
         Change::kPieces},
        {"UpdateRegistInfo",
         [&](UserAuthService& service) { return service.UpdateRegistInfo(); },
         {R"({"result":{"code":"0"},"languageType":"a long language","privilege":true,"clientLogReport":true})"}},
        {"InitSysConf", [&](UserAuthService& service) { return service.InitSysConf(); }, {basic}},
        {"ActiveUser", [&](UserAuthService& service) { return service.ActiveUser(); }, {basic}},
        {"ReportLoginTime", [&](UserAuthService& service) { return service.ReportLoginTime(Copied(name)), false; }, {}},
        {"RequestClientLogReport",
         [&](UserAuthService& service) { return service.RequestClientLogReport(); },
         {R"({"result":0,"resultMap":{"clientLogReport":"true"}})"}},
        {"GetLoginDevicesHistory",
         [&](UserAuthService& service) { return service.GetLoginDevicesHistory(m_devices); },
         {R"({"opRecordList":[{"deviceId":"a device with a long id"},{"deviceId":"another device, long id"}]})"}},
        {"ExportContracts",
         [&](UserAuthService& service) { return service.ExportContracts(Copied(url), Copied(file), {}); },
         {"BEGIN:VCARD"}},
        {"GetRtqRemoteInfo",
         [&](UserAuthService& service) { return !service.GetRtqRemoteInfo(Copied(url), headers).empty(); },
         {"a long reply of the routing service"}},
        {"InitZms", [&](UserAuthService& service) { return service.InitZms(nullptr) == 0; }, {}},
        {"ZmsSignIn", [&](UserAuthService& service) { return service.ZmsSignIn() == ZvIdErrorType::kSuccess; }, {}},
        {"RegisterLogout",
         [&](UserAuthService& service) { return service.RegisterLogout(name, name) == ZvIdErrorType::kSuccess; },
         {}},
        {"IsZmsAccountChanged",
         [&](UserAuthService& service) { return service.IsZmsAccountChanged(userId), false; },
         {}},
        {"IsZmsSignIn", [&](UserAuthService& service) { return service.IsZmsSignIn(), false; }, {}},
        {"UpdateAppIdConfig", [&](UserAuthService& service) { return Access::UpdateAppIdConfig(service), false; }, {}},
        {"InitUserSyncKey",
         [&](UserAuthService&) { return UserSyncKeyService().InitUserSyncKey() && false; },
         {},
         Change::kPieces},
    };
    int all = 0;
    for (const Row& row : rows) {
        const int found = Findings();
        int failures[2] = {};
        Run(row, Allocator::kNew, 1 << 30, false);
        const State after = StateNow();
        const std::vector<std::string> whole = m_sent;
        Prepare(row);
        const State before = StateNow();
        for (const Allocator allocator : {Allocator::kNew, Allocator::kOpenSsl}) {
            allocatorIsOpenSsl = allocator == Allocator::kOpenSsl;
            for (const bool lasting : {false, true}) {
                int failed = 1;
                for (int number = 0; failed > 0 && Findings() == found; ++number) {
                    SCOPED_TRACE(std::string(row.name) + (allocatorIsOpenSsl ? ", OpenSSL's" : ", own") +
                                 (lasting ? " allocations from number " : " allocation number ") +
                                 std::to_string(number));
                    failed = Run(row, allocator, number, lasting);
                    failures[allocatorIsOpenSsl ? 1 : 0] += failed > 0 ? 1 : 0;
                    ExpectOldOrNew(row, before, after, lasting);
                    auto next = whole.begin();
                    for (const std::string& request : m_sent) {
                        next = std::find(next, whole.end(), request);
                        EXPECT_TRUE(next != whole.end()) << "half a request is sent: " << request;
                    }
                }
            }
        }
        all += failures[0];
        // On Windows the C++ runtime and the JSON library have an operator new of their own.
#if !defined(_WIN32)
        EXPECT_TRUE(failures[0] > 0 || std::strcmp(row.name, "SetRealUserKey") == 0) << row.name;
#endif
        std::printf("%-34s %5d failed allocations, %d of OpenSSL\n", row.name, failures[0], failures[1]);
    }
    EXPECT_GT(all, 300);
}

TEST_F(OutOfMemory, FreedMemoryHoldsNoKey) {
    Prepare({"InitUserSyncKey", {}, {}});
    FreedMemory freed;
    EXPECT_TRUE(UserSyncKeyService().InitUserSyncKey());
    m_service->SetRealUserKey(std::vector<std::uint8_t>(32, 0x77));
    m_service->SetRealUserKey({});
    { const std::string control = std::string(40, 'c') + "ontrol"; }
    const Uncounted uncounted;
    m_exchanged.insert({{"a key", std::string(16, 0x5A)}, {"the real key", std::string(32, 0x77)}});
    EXPECT_EQ(m_exchanged.size(), 4U);
    for (const auto& [name, bytes] : m_exchanged) {
        EXPECT_FALSE(freed.Holds(bytes)) << name;
    }
#if !defined(_WIN32)
    EXPECT_TRUE(freed.Holds("ccccontrol"));
#endif
}
