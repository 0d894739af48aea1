#include "SandboxSession.h"

using BasicService = SandboxSession;
using Modules = std::vector<std::wstring>;

TEST_F(BasicService, ConfigurationAndActivationFollowThePlatform) {
    SignInWhole();
    m_sandbox.Control("/sandbox/settings",
                      R"({"modules":{"funcfg_drive":"true","funcfg_notes":false},"available":true,"userStatus":0})");
    EXPECT_TRUE(m_service->InitSysConf()) << LogText();
    EXPECT_TRUE(m_service->IsAvailableCountry());
    EXPECT_FALSE(m_service->IsActiveAccount());
    EXPECT_EQ(m_service->GetValidModule(),
              (Modules{L"Contacts", L"Drive", L"FindDevice", L"Gallery", L"ManageSpace", L"Recorder"}));
    EXPECT_TRUE(m_service->ActiveUser()) << LogText();
    EXPECT_TRUE(m_service->IsActiveAccount());
    m_sandbox.Control("/sandbox/settings",
                      R"({"modules":{"funcfg_drive":"TRUE","funcfg_contacts":null},"available":"yes"})");
    EXPECT_TRUE(m_service->InitSysConf());
    EXPECT_FALSE(m_service->IsAvailableCountry());
    EXPECT_TRUE(m_service->IsActiveAccount()) << "the platform keeps the activation";
    EXPECT_EQ(m_service->GetValidModule(), (Modules{L"FindDevice", L"Gallery", L"ManageSpace", L"Recorder"}));
}

TEST_F(BasicService, ReportsAndDevicesReachThePlatform) {
    SignInWhole();
    m_sandbox.Control("/sandbox/settings", R"({"clientLogReport":true})");
    EXPECT_TRUE(m_service->RequestClientLogReport());
    EXPECT_TRUE(m_service->GetClientLogReportStatus());
    m_service->ReportLoginTime("drive,\"\xE0\xB8\x97\xE0\xB8\x94\":\\");
    const Json::Value reports = m_sandbox.Control("/sandbox/reports")["reports"];
    ASSERT_EQ(reports.size(), 1U) << LogText();
    EXPECT_EQ(reports[0].asString(),
              "service:client,action:dataInit,bus:drive,\"\xE0\xB8\x97\xE0\xB8\x94\":\\,result:ok");
    std::vector<DeviceTag> devices;
    EXPECT_TRUE(m_service->GetLoginDevicesHistory(devices)) << LogText();
    ASSERT_GE(devices.size(), 2U);
    EXPECT_EQ(devices[0].opDesc, L"service:client,action:dataInit,bus:drive,\"\u0E17\u0E14\":\\,result:ok");
    for (std::size_t index = 1; index < devices.size(); ++index) {
        EXPECT_GE(devices[index - 1].lastUpdateTime, devices[index].lastUpdateTime) << "newest first";
    }
}
