#include <HttpLib.h>

#include "ServiceFixture.h"

using UpdateRegistInfo = ServiceTest;

TEST_F(UpdateRegistInfo, StoresWhatAGoodReplySays) {
    const std::string good =
        R"({"languageType":"th-th","privilege":true,"clientLogReport":true,"result":{"code":"0"}})";
    constexpr char kOperation[] = "UpdateRegistInfo";
    const struct : ReplyRow {
        const char* language;
        bool privilege, clientLog;
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
    UserAuthServiceAccess::Country(*m_service) = L"\u00C9";
    m_service->SetCurrentAT(L"at");
    for (const auto& row : rows) {
        const std::string status = std::to_string(row.status);
        EXPECT_EQ(
            Outcome(row, &UserAuthService::UpdateRegistInfo),
            Log("2", kOperation, "UpdateRegistInfo httpcode:" + status) +
                Log("0", kOperation,
                    "UpdateRegistInfo\nUrl:https://portal.example.com/pcclient/getRegisterInfo?traceId=\nHttpCode:" +
                        status) +
                (row.result ? Log("2", kOperation, "UpdateRegistInfo successed!")
                            : Log("5", kOperation, "Error: UpdateRegistInfo failed, httpcode = " + status)))
            << row.name;
        EXPECT_EQ(m_service->GetLanguageType(), row.language) << row.name;
        EXPECT_EQ(m_service->GetCurrentPriviledge(), row.privilege) << row.name;
        EXPECT_EQ(m_service->GetClientLogReportStatus(), row.clientLog) << row.name;
    }
    const std::wstring trace = Recording().requestHeaders.at(L"x-zv-trace-id");
    EXPECT_EQ(trace.substr(0, 9), L"12003_11_");
    EXPECT_EQ(Recording().postData, L"{\"registerCountryCode\":\"\\u00c9\",\"traceId\":\"" + trace + L"\"}\n");
    EXPECT_EQ(Recording().requestHeaders, UserAuthServiceAccess::BuildHeaders(*m_service, HeadType::kAccount, trace));
}

TEST_F(UpdateRegistInfo, IsChinaAccountComparesTheCountry) {
    for (const auto& [country, expected] :
         std::map<std::wstring, bool>{{L"CN", true}, {L"cn", false}, {L"", false}, {L"TH", false}}) {
        UserAuthServiceAccess::Country(*m_service) = country;
        EXPECT_EQ(m_service->IsChinaAccount(), expected);
    }
}
