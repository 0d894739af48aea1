#include <HttpLib.h>
#include <ParamStore.h>

#include <set>

#include "SandboxSession.h"

namespace {

using Modules = std::vector<std::wstring>;

class BasicService : public SandboxSession {
protected:
    BasicService() { SignInWhole(); }

    void Change(const char* settings) {
        Json::Value value;
        std::istringstream(settings) >> value;
        m_sandbox.Control("/sandbox/settings", value);
    }

    // Everything that these operations may change.
    std::wstring State() {
        std::wstring state;
        for (const std::wstring& module : m_service->GetValidModule()) {
            state += module + L" ";
        }
        for (const bool flag :
             {m_service->IsAvailableCountry(), m_service->IsActiveAccount(), m_service->GetClientLogReportStatus()}) {
            state += flag ? L"yes " : L"no ";
        }
        return state + std::to_wstring(m_devices.size());
    }

    std::vector<DeviceTag> m_devices;
};

const char kConfiguration[] = "/KeCloudUserFoundationService/PC/sysConfInit";
const char kActivation[] = "/KeCloudUserFoundationService/PC/sysConfRefresh";
const char kRegister[] = "/KeCloudUserFoundationService/PC/getUserRegister";
const char kRecord[] = "/KeCloudUserFoundationService/PC/postOpDesc";
const char kDevices[] = "/KeCloudUserFoundationService/PC/getLastOperationRecord";

}  // namespace

TEST_F(BasicService, ConfigurationAndActivationFollowThePlatform) {
    Change(R"({"modules":{"funcfg_drive":"true","funcfg_notes":false},"available":true,"userStatus":0})");
    EXPECT_TRUE(m_service->InitSysConf()) << LogText();
    EXPECT_TRUE(m_service->IsAvailableCountry());
    EXPECT_FALSE(m_service->IsActiveAccount());
    EXPECT_EQ(m_service->GetValidModule(),
              (Modules{L"Contacts", L"Drive", L"FindDevice", L"Gallery", L"ManageSpace", L"Recorder"}));
    EXPECT_TRUE(m_service->ActiveUser()) << LogText();
    EXPECT_TRUE(m_service->IsActiveAccount());
    Change(R"({"modules":{"funcfg_drive":"TRUE","funcfg_contacts":null},"available":"yes"})");
    EXPECT_TRUE(m_service->InitSysConf());
    EXPECT_FALSE(m_service->IsAvailableCountry());
    EXPECT_TRUE(m_service->IsActiveAccount()) << "the platform keeps the activation";
    EXPECT_EQ(m_service->GetValidModule(), (Modules{L"FindDevice", L"Gallery", L"ManageSpace", L"Recorder"}));
}

TEST_F(BasicService, ReportsAndDevicesReachThePlatform) {
    Change(R"({"clientLogReport":true})");
    EXPECT_TRUE(m_service->RequestClientLogReport());
    EXPECT_TRUE(m_service->GetClientLogReportStatus());
    m_service->ReportLoginTime("drive,\"\xE0\xB8\x97\xE0\xB8\x94\":\\");
    const Json::Value reports = m_sandbox.Control("/sandbox/reports")["reports"];
    ASSERT_EQ(reports.size(), 1U) << LogText();
    EXPECT_EQ(reports[0].asString(),
              "service:client,action:dataInit,bus:drive,\"\xE0\xB8\x97\xE0\xB8\x94\":\\,result:ok");
    EXPECT_TRUE(m_service->GetLoginDevicesHistory(m_devices)) << LogText();
    ASSERT_GE(m_devices.size(), 2U);
    EXPECT_EQ(m_devices[0].opDesc, L"service:client,action:dataInit,bus:drive,\"\u0E17\u0E14\":\\,result:ok");
    for (std::size_t index = 1; index < m_devices.size(); ++index) {
        EXPECT_GE(m_devices[index - 1].lastUpdateTime, m_devices[index].lastUpdateTime) << "newest first";
    }
}

TEST_F(BasicService, FaultsChangeNothingAndAreLogged) {
    const struct {
        const char* endpoint;
        std::function<bool(UserAuthService&, std::vector<DeviceTag>&)> operation;
        bool trueOnAny200;
        bool createdIsSuccess;
        const char* logged;  // before the status
    } operations[] = {
        {kConfiguration, [](auto& s, auto&) { return s.InitSysConf(); }, false, true, "GetSysConfigInfo httpcode:"},
        {kActivation, [](auto& s, auto&) { return s.ActiveUser(); }, false, true, "ActiveUser httpcode:"},
        {kRegister, [](auto& s, auto&) { return s.RequestClientLogReport(); }, false, true,
         "requestClientLogReport HttpCode: "},
        {kDevices, [](auto& s, auto& devices) { return s.GetLoginDevicesHistory(devices); }, true, false, ""},
        {kRecord,
         [](auto& s, auto&) {
             s.ReportLoginTime("b");
             return false;
         },
         false, false, "ReportLoginTime httpcode:"},
    };
    const struct {
        const char* fault;
        int code;
    } faults[] = {{R"({"status":503})", 503},
                  {R"({"status":204})", 204},
                  {R"({"cutAfter":5})", kHttpConnectionBroken},
                  {R"({"contentLength":9999})", kHttpConnectionBroken},
                  {R"({"garbage":true})", 200},
                  {R"({"body":"[1]","status":201})", 201}};
    for (const auto& operation : operations) {
        EXPECT_EQ(operation.operation(*m_service, m_devices), operation.endpoint != kRecord) << LogText();
        for (const auto& fault : faults) {
            SCOPED_TRACE(std::string(operation.endpoint) + " " + fault.fault);
            const std::wstring before = State();
            m_sandbox.Fault(operation.endpoint, fault.fault);
            const bool result = operation.operation(*m_service, m_devices);
            const bool readAsEmpty = fault.code == 201 && operation.endpoint == kConfiguration;
            EXPECT_EQ(result, readAsEmpty || (operation.trueOnAny200 && fault.code == 200));
            EXPECT_EQ(State() == before, !readAsEmpty);
            EXPECT_NE(LogText().find(*operation.logged == '\0' ? "Error: GetLoginDevicesHistory failed!"
                                                               : operation.logged + std::to_string(fault.code)),
                      std::string::npos);
        }
        m_sandbox.Fault(operation.endpoint, R"({"status":201})");
        EXPECT_EQ(operation.operation(*m_service, m_devices), operation.createdIsSuccess) << operation.endpoint;
    }
}

// The basic service's replies have no limit of 40959 bytes.
TEST_F(BasicService, ALargeConfigurationIsRead) {
    m_sandbox.Fault(kConfiguration, R"({"oversize":200000})");
    EXPECT_TRUE(m_service->InitSysConf()) << LogText();
    EXPECT_EQ(m_service->GetValidModule().size(), 7U);
}
