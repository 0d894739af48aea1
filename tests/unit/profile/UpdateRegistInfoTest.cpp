#include <HttpLib.h>

#include "ServiceFixture.h"

TEST_F(ServiceTest, UpdateRegistInfoStoresWhatAGoodReplySays) {
    const std::string good =
        R"({"languageType":"th-th","privilege":true,"clientLogReport":true,"result":{"code":"0"}})";
    const struct {
        const char* name;
        int status;
        std::string body;
        bool result;
        const char* language;
        bool privilege;
        bool clientLog;
    } rows[] = {
        {"server error first", 500, good, false, "", false, false},
        {"good", 200, good, true, "th-th", true, true},
        {"other result code", 200, R"({"languageType":"x","privilege":false,"result":{"code":"1"}})", false, "th-th",
         true, true},
        {"mistyped", 200, R"({"languageType":1,"privilege":"false","clientLogReport":0,"result":{"code":"0"}})", true,
         "th-th", true, true},
        {"array", 200, "[]", false, "th-th", true, true},
        {"no exchange", kHttpTimeout, "", false, "th-th", true, true},
        {"changed", 200, R"({"languageType":"\u00e9","privilege":false,"clientLogReport":false,"result":{"code":"0"}})",
         true, "\xC3\xA9", false, false},
    };
    UserAuthServiceAccess::SetCountry(*m_service, L"\u00C9");
    m_service->SetCurrentAT(L"at");
    for (const auto& row : rows) {
        const std::string tag = " UserAuthService::UpdateRegistInfo ";
        const std::string status = std::to_string(row.status);
        Recording().journal.clear();
        Recording().replies = {{row.status, row.body, {}}};
        EXPECT_EQ(m_service->UpdateRegistInfo(), row.result) << row.name;
        EXPECT_EQ(m_service->GetLanguageType(), row.language) << row.name;
        EXPECT_EQ(m_service->GetCurrentPriviledge(), row.privilege) << row.name;
        EXPECT_EQ(m_service->GetClientLogReportStatus(), row.clientLog) << row.name;
        EXPECT_EQ(
            Recording().TakeOutcome(),
            (std::vector<std::string>{
                "log 10 2" + tag + "UpdateRegistInfo httpcode:" + status,
                "log 10 0" + tag +
                    "UpdateRegistInfo\nUrl:https://portal.example.com/pcclient/getRegisterInfo?traceId=\nHttpCode:" +
                    status,
                row.result ? "log 10 2" + tag + "UpdateRegistInfo successed!"
                           : "log 10 5" + tag + "Error: UpdateRegistInfo failed, httpcode = " + status}))
            << row.name;
    }
    const std::wstring trace = Recording().requestHeaders.at(L"x-zv-trace-id");
    EXPECT_EQ(trace.substr(0, 9), L"12003_11_");
    EXPECT_EQ(Recording().postData, L"{\"registerCountryCode\":\"\\u00c9\",\"traceId\":\"" + trace + L"\"}\n");
    EXPECT_EQ(Recording().requestHeaders.at(L"Authorization"), L"Njo6MTA0ODYyOTE1OjphdA==");  // 6::104862915::at
}

TEST_F(ServiceTest, IsChinaAccountComparesTheCountry) {
    for (const auto& [country, expected] :
         std::map<std::wstring, bool>{{L"CN", true}, {L"cn", false}, {L"", false}, {L"TH", false}}) {
        UserAuthServiceAccess::SetCountry(*m_service, country);
        EXPECT_EQ(m_service->IsChinaAccount(), expected);
    }
}
