#include <HttpLib.h>
#include <ParamStore.h>
#include <UserSyncKeyService.h>

#include <thread>

#include "AccountFields.h"
#include "PortraitWindow.h"
#include "SandboxSession.h"

namespace {

const char kExchange[] = "/pcclient/getAccessTokenByCode";
const char kRefresh[] = "/pcclient/refreshtoken";
const char kPublicKey[] = "/KeCloudUserInformationService/v1/keys/publicKey";
const char kKeyList[] = "/KeCloudUserInformationService/v1/keys";

// Every operation that asks one server, and every way in which that server may fail it.
class Faults : public SandboxSession {
protected:
    struct Operation {
        std::string endpoint;
        std::function<bool()> run;
        std::string succeedsWith;  // names of the faults that do not fail it
        std::string line;          // of the log, before the code; empty: it has none
    };

    Faults() {
        m_code = SignIn();
        EXPECT_TRUE(Exchange()) << LogText();
    }
    ~Faults() override {
        m_service->SetAtExpireCallback(nullptr);
        m_keys.ClearUserSyncKey();
    }

    bool Exchange() { return m_service->RequestAT("", m_code.c_str()); }

    // photo: whether the second list arrives all the same when the first key does not.
    bool FetchKeys(bool photo) {
        m_keys.ClearUserSyncKey();
        const bool both = m_keys.InitUserSyncKey();
        EXPECT_EQ(m_keys.IsSyncDriveKeyInited(), both);
        EXPECT_EQ(m_keys.IsCloudPhotoKeyInited(), both || photo);
        return both;
    }

    std::vector<Operation> Operations() {
        const std::string any200 = "garbage, wrong types, array, empty, too large, fits";
        const std::string basic = "created, too large, fits";
        const std::string pc = "/KeCloudUserFoundationService/PC/";
        UserAuthService& s = *m_service;
        return {
            {kExchange, [this] { return Exchange(); }, "fits", "RequestCountryCode httpcode:"},
            {kRefresh, [&s] { return s.GetAccessTokenByRefrshToken(); }, "fits", "refresh AT error statusCode: "},
            {"/pcclient/getAppAccessToken", [&s] { return s.RequestApplicationAT(); }, any200,
             "Get ApplyAT Failed! httpcode = "},
            {"/pcclient/getRegisterInfo", [&s] { return s.UpdateRegistInfo(); }, "fits",
             "Error: UpdateRegistInfo failed, httpcode = "},
            {"/gateway", [&s] { return s.RequestUserID(); }, any200, "HttpCode:"},
            {"/drive/v1/about", [&s] { return s.RequestUserIdFromSyncServer(); }, any200, "RequestUserId httpcode="},
            {"/KeCloudUserInformationService/v1/users",
             [this, &s] { return s.RequestUserInfo() && m_window.Messages(1) == 1; }, any200, "HttpCode:"},
            {pc + "sysConfInit", [&s] { return s.InitSysConf(); }, basic + ", wrong types, array",
             "GetSysConfigInfo httpcode:"},
            {pc + "sysConfRefresh", [&s] { return s.ActiveUser(); }, basic, "ActiveUser httpcode:"},
            {pc + "getUserRegister", [&s] { return s.RequestClientLogReport(); }, basic,
             "requestClientLogReport HttpCode: "},
            {pc + "getLastOperationRecord", [this, &s] { return s.GetLoginDevicesHistory(m_devices); }, any200, ""},
            {pc + "postOpDesc", [&s] { return s.ReportLoginTime("b"), false; }, "", "ReportLoginTime httpcode:"},
            {kPublicKey, [this] { return FetchKeys(false); }, "fits", ""},
            {kKeyList, [this] { return FetchKeys(true); }, "fits", ""},
        };
    }

    // All that the operations fill.
    Fields State() {
        Fields state = AccountFields(*m_service);
        state["application token"] = GlobalParamWrapper::GetInstance()->GetAppAT();
        state["devices"] = std::to_wstring(m_devices.size());
        return state;
    }

    std::string m_code;
    std::vector<DeviceTag> m_devices;
    PortraitWindow m_window;
    UserSyncKeyService m_keys;
};

}  // namespace

TEST_F(Faults, FailTheirOperationOnlyAndAreLogged) {
    const struct {
        std::string name;
        const char* fault;
        int code;
    } faults[] = {
        {"status", R"({"status":503})", 503},
        {"no content", R"({"status":204})", 204},
        {"created", R"({"status":201})", 201},
        {"cut", R"({"cutAfter":5})", kHttpConnectionBroken},
        {"too long a length", R"({"contentLength":99999})", kHttpConnectionBroken},
        {"garbage", R"({"garbage":true})", 200},
        {"wrong types", R"({"wrongTypes":true})", 200},
        {"array", R"({"body":"[]"})", 200},
        {"empty", R"({"body":""})", 200},
        {"too large", R"({"oversize":40960})", 200},
        {"fits", R"({"oversize":40959})", 200},  // the largest reply, and proof that the operation works
    };
    int callbacks = 0;
    m_service->SetAtExpireCallback([&] { ++callbacks; });
    for (const Operation& operation : Operations()) {
        for (const auto& fault : faults) {
            SCOPED_TRACE(operation.endpoint + " " + fault.name);
            const bool exchange = operation.endpoint == kExchange;
            m_code = exchange ? SignIn() : "";
            const bool succeeds = operation.succeedsWith.find(fault.name) != std::string::npos;
            Fields state = State();
            const std::string line = operation.line + std::to_string(fault.code);
            const std::size_t lines = CountOf(line, LogText());
            callbacks = 0;
            m_sandbox.Fault(operation.endpoint, fault.fault);
            EXPECT_EQ(operation.run(), succeeds) << LogText();
            EXPECT_EQ(callbacks, operation.endpoint == kRefresh && fault.code == 200 && !succeeds ? 1 : 0);
            if (exchange && fault.code == 200) {
                for (const char* emptied : {"access token", "refresh token", "country"}) {
                    state.erase(emptied);
                }
            }
            if (!succeeds) {
                EXPECT_EQ(State(), state);
            }
            if (fault.name != "fits" && !operation.line.empty()) {
                EXPECT_EQ(CountOf(line, LogText()), lines + 1) << line;
            }
        }
    }
}

// All servers at once, so that the 30 seconds are waited for only once; meanwhile the keys' servers have much to do.
TEST_F(Faults, AStalledServerFailsItsOperationAfterTheStallLimitAndHoldsUpNoOther) {
    constexpr int kRuns = 1000;
    ASSERT_TRUE(m_service->RequestUserIdFromSyncServer());
    m_code = SignIn();
    std::vector<Operation> operations = Operations();
    operations.resize(operations.size() - 2);  // the keys' servers
    const Fields state = State();
    std::vector<std::thread> threads;
    threads.reserve(operations.size());
    for (const Operation& operation : operations) {
        m_sandbox.Fault(operation.endpoint, R"({"stallMs":120000})");
        threads.emplace_back([&] { EXPECT_FALSE(operation.run()) << operation.endpoint; });
    }
    for (int run = 0; run < kRuns && !HasFailure(); ++run) {
        m_keys.ClearUserSyncKey();
        GlobalParamWrapper::GetInstance()->GetUserInfo().photoKey3[0] = 1;  // the drive's list is enough
        EXPECT_TRUE(m_keys.InitUserSyncKey()) << LogText();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(State(), state);
    for (const Operation& operation : operations) {
        const std::string line = operation.line + std::to_string(kHttpTimeout);
        EXPECT_TRUE(operation.line.empty() || CountOf(line, LogText()) > 0) << operation.endpoint << " met no stall";
    }
    // Every token opened at the platform, and no nonce came twice.
    const Json::Value exchanges = m_sandbox.Control("/sandbox/user-keys")["exchanges"];
    for (const char* count : {"tokens", "distinctNonces", "distinctTemporaryKeys"}) {
        EXPECT_EQ(exchanges[count].asInt(), kRuns) << count;
    }
}
