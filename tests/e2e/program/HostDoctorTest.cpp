#include "SandboxSession.h"
#include "Userauth.h"

namespace {

class HostDoctor : public SandboxSession {
protected:
    // A file of the test, with quotation marks around its path.
    std::wstring File(const char* name, const std::string& text) const {
        WriteFile(m_folder / name, text);
        return L"\"" + (m_folder / name).wstring() + L"\"";
    }
};

}  // namespace

TEST_F(HostDoctor, ExaminesEverythingAndNamesWhatIsWrong) {
    const std::wstring platform = L" --platform " + Wide(m_sandbox.m_http);
    const std::wstring noCertificate = L" --certificate-authority " + File("empty.pem", "no certificate");
    const std::wstring https = L" --platform " + Wide(m_sandbox.m_https);
    const std::wstring authority = L" --certificate-authority \"" + (m_folder / "authority.pem").wstring() + L"\"";
    const std::string sdk = ReadFile(ProgramFolder() / "ZMSCoreConfig.json");
    using Faults = std::map<std::string, std::string>;  // by their steps, what their details say
    const struct {
        const char* name;
        std::wstring arguments;
        Faults faults;
        std::string sdkConfiguration;
    } rows[] = {
        {"all is well", platform, {}, sdk},
        {"https", https + authority, {}, sdk},
        {"authority not known", https, {{"platform", "is not trusted: name the file of its authority"}}, sdk},
        {"no platform",
         L"",
         {{"configuration", "no platform is named: give --config FILE"}, {"platform", "not asked"}},
         sdk},
        {"nobody there",
         L" --platform http://127.0.0.1:9",
         {{"platform", "no account platform answers at http://127.0.0.1:9: start one"}},
         sdk},
        {"configuration of another form",
         L" --config " + File("array.json", "[]"),
         {{"configuration", "array.json"}, {"platform", "not asked"}},
         sdk},
        {"no certificate in the file",
         platform + noCertificate,
         {{"certificates", "holds no certificate: give one in PEM form"}},
         sdk},
        {"SDK without client", platform, {{"account-sdk-configuration", "has no \"client_id\": write it as"}}, "{}"},
        {"SDK without JSON", platform, {{"account-sdk-configuration", "is no JSON object: write it as"}}, "client"},
    };
    for (const auto& row : rows) {
        WriteFile(ProgramFolder() / "ZMSCoreConfig.json", row.sdkConfiguration);
        const Userauth run(L"doctor --json" + row.arguments);
        EXPECT_EQ(run.m_code, row.faults.empty() ? 0 : 1) << row.name << run.m_output << run.m_error;
        auto steps = run.Steps();
        for (const char* const step : {"libraries", "account-sdk", "account-sdk-configuration", "configuration",
                                       "certificates", "proxy", "platform", "clock"}) {
            const auto fault = row.faults.find(step);
            ASSERT_EQ(steps.count(step), 1U) << row.name << ": a fault ends nothing; " << step;
            EXPECT_EQ(steps[step]["ok"].asBool(), fault == row.faults.end()) << row.name << steps[step];
            EXPECT_NE(steps[step]["detail"].asString().find(fault == row.faults.end() ? "" : fault->second),
                      std::string::npos)
                << row.name << steps[step];
        }
    }
}
