#include "SandboxSession.h"

namespace {

// The console host exports contacts.
class HostContacts : public SandboxSession {
protected:
    std::wstring Quoted(const std::filesystem::path& file) const { return L" \"" + file.wstring() + L"\" "; }

    // Unfinished downloads.
    int PartFiles() const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            count += entry.path().extension() == ".part" ? 1 : 0;
        }
        return count;
    }

    const std::filesystem::path m_file = m_folder / "contacts.vcf";
};

}  // namespace

TEST_F(HostContacts, ReadsThePortalsCookiesFromAFile) {
    std::string lines = "\n";
    for (const auto& [name, value] : m_sandbox.PortalCookies()) {
        lines += Narrow(name) + "=" + Narrow(value) + "\r\n\r\n";
    }
    const struct {
        const char* name;
        std::string cookies;
        int code;
    } rows[] = {{"no cookies", "\n", 2},
                {"too few cookies", "a=1", 1},
                {"all cookies", "\xEF\xBB\xBF" + lines, 0},
                {"no cookie", "secret\n", 2},
                {"twice", "a=1\na=2", 2}};
    const std::string path = m_sandbox.Control("/sandbox/portal-login")["path"].asString();
    for (const auto& row : rows) {
        WriteFile(m_folder / "cookies.txt", row.cookies);
        ChildProcess run(L"userauth.exe", L"contacts export" + Quoted(m_file) + L"--url " + m_sandbox.Url(path) +
                                              L" --cookie-file" + Quoted(m_folder / "cookies.txt"));
        EXPECT_EQ(run.Finish(), row.code) << row.name << run.m_output << run.m_error;
        EXPECT_EQ(std::filesystem::exists(m_file), row.code == 0) << row.name;
        EXPECT_EQ(run.m_error.find("secret"), std::string::npos) << run.m_error;
        std::filesystem::remove(m_file);
    }
}

// In a console of their own, since Ctrl-C reaches all programs of a console.
TEST_F(HostContacts, CtrlCEndsADownloadAndRemovesItsFile) {
    const std::string path = m_sandbox.Control("/sandbox/portal-login")["path"].asString();
    m_sandbox.Fault(path, R"({"stallMs":20000,"stallAfter":100})");
    const int before = m_sandbox.Requests(path);
    FreeConsole();
    ASSERT_NE(AllocConsole(), FALSE);
    ChildProcess run(L"userauth.exe", L"contacts export" + Quoted(m_file) + L"--platform " + Wide(m_sandbox.m_http));
    m_sandbox.AwaitRequest(path, before + 1);
    EXPECT_EQ(PartFiles(), 1) << "control step";
    SetConsoleCtrlHandler(nullptr, TRUE);  // this program goes on
    const ULONGLONG start = GetTickCount64();
    EXPECT_NE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), FALSE);
    EXPECT_EQ(run.Finish(), 3) << run.m_output << run.m_error;
    EXPECT_LT(GetTickCount64() - start, 10000U) << "the reply's end was waited for";
    EXPECT_NE(run.m_error.find("userauth: interrupted\n"), std::string::npos) << run.m_error;
    SetConsoleCtrlHandler(nullptr, FALSE);
    FreeConsole();
    EXPECT_EQ(PartFiles(), 0);
}
