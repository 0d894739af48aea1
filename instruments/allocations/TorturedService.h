#pragma once

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
