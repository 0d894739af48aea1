#include "SandboxSession.h"
#include "Userauth.h"

TEST(HostArguments, WhatIsWrongIsSaidInOneLineWithoutSecrets) {
    const std::wstring file = (std::filesystem::temp_directory_path() / "contacts.vcf").wstring();
    const std::wstring contacts = L"contacts export \"" + file + L"\" ";
    const struct {
        std::wstring arguments;
        const char* says;
    } rows[] = {
        {L"", "no command given"},
        {L"no-such-command", "unknown command \"no-such-command\""},
        {L"status no-such-command", "unknown command \"no-such-command\""},
        {L"--no-such-option status", "--no-such-option (see userauth --help)"},
        {L"status --log", "--log"},
        {L"demo status", "demo stands alone"},
        {L"status doctor", "doctor stands alone"},
        {L"completion bash status", "completion stands alone"},
        {L"completion fish", "for bash or powershell, not fish"},
        {L"completion", "give it as \"completion SHELL\""},
        {L"demo --platform http://h", "demo brings its own platform"},
        {L"demo --sdk-platform http://h", "demo brings its own platform"},
        {L"status --https", "--https belongs to demo"},
        {L"status --business photo", "--business belongs to report"},
        {L"status --url http://h/e", "belong to contacts export"},
        {L"status --config Z:\\absent.json", "--config: no such file"},
        {L"status --certificate-authority Z:\\absent.pem", "--certificate-authority: no such file"},
        {L"contacts export", "give it as \"contacts export FILE\""},
        {L"contacts import c.vcf", "give it as \"contacts export FILE\""},
        {L"contacts export Z:\\absent\\c.vcf --url http://h", "no such folder: Z:\\absent"},
        {L"contacts export Z:\\ --url http://h", "not the name of a file"},
        {contacts, "say from where"},
        {contacts + L"--cookie a=secret", "--cookie and --cookie-file need --url"},
        {contacts + L"--url http://h --cookie secret", "not of the form NAME=VALUE"},
        {contacts + L"--url http://h --cookie =secret", "not of the form NAME=VALUE"},
        {contacts + L"--url http://h --cookie \"a=b;secret\"", "not of the form NAME=VALUE"},
        {contacts + L"--url http://h --cookie \"a=b secret\"", "not of the form NAME=VALUE"},
        {contacts + L"--url http://h --cookie a=secret --cookie a=secret", "a name is given twice"},
        {contacts + L"--url http://h --cookie-file Z:\\absent", "--cookie-file: no such file"},
        {contacts + L"--url ftp://h", "--url: "},
        {L"route", "give it as \"route URL\""},
        {L"route http://", "route: "},
        {L"route \"http://h/a b\"", "must not contain blanks or control characters"},
        {L"route http://user:secret@h/p?t=secret#secret", "http://***@h/p?***"},
        {L"route http://secret@secret@h/#secret", "http://***@h/#***"},
        {L"status --platform http://user:secret@h", "http://***@h"},
        {L"status --platform http://h?t=secret", "http://h?***"},
        {L"status --platform secret@h", "***@h"},
        {L"status --sdk-platform ftp://h", "--sdk-platform: "},
        {L"sign-in", "no platform given"},
        {L"sign-in --platform ftp://x", "ftp://x"},
        {L"sign-in --config Z:\\absent.json", "absent.json"},
        {L"no-such-command", "no-such-command"},
    };
    for (const auto& row : rows) {
        const Userauth run(row.arguments);
        EXPECT_EQ(run.m_code, 2) << Narrow(row.arguments) << run.m_error;
        EXPECT_EQ(run.m_error.find("userauth: "), 0U) << run.m_error;
        EXPECT_NE(run.m_error.find(row.says), std::string::npos) << Narrow(row.arguments) << ": " << run.m_error;
        EXPECT_EQ(CountOf("\n", run.m_error), 1U) << run.m_error;
        EXPECT_EQ((run.m_output + run.m_error).find("secret"), std::string::npos) << run.m_error;
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(HostArguments, WhatNeedsNoPlatformIsAnsweredAtOnce) {
    const struct {
        const wchar_t* arguments;
        std::vector<const char*> says;
    } rows[] = {
        {L"--help", {"--cookie-file", "contacts export FILE", "userauth doctor --config client.json", "Exit codes:"}},
        {L"--version", {"userauth 11."}},
        {L"completion bash", {"complete -F _userauth", "demo sign-in whoami", "--certificate-authority"}},
        {L"completion powershell", {"Register-ArgumentCompleter", "'demo sign-in whoami", "--verbose"}},
        {L"status", {"not signed in", "3 steps, all succeeded"}},
    };
    for (const auto& row : rows) {
        const Userauth run(row.arguments);
        EXPECT_EQ(run.m_code, 0) << Narrow(row.arguments) << run.m_error;
        EXPECT_EQ(run.m_error, "") << Narrow(row.arguments);
        for (const char* const part : row.says) {
            EXPECT_NE(run.m_output.find(part), std::string::npos) << part << " in " << run.m_output;
        }
    }
}

// These came as far as a session, which then ended: another exit code than wrong arguments have.
TEST(HostArguments, WhatNeedsASessionSaysSo) {
    for (const wchar_t* const command : {L"whoami", L"profile", L"registration", L"modules", L"activate", L"report",
                                         L"devices", L"refresh", L"application-token", L"keys"}) {
        const Userauth run(command + std::wstring(L" status --json"));
        EXPECT_EQ(run.m_code, 1) << Narrow(command) << run.m_error;
        auto steps = run.Steps();
        EXPECT_EQ(steps["session"]["detail"], Narrow(command) + " needs a session: put sign-in before it");
        EXPECT_EQ(steps.count("status"), 0U) << Narrow(command);
    }
}
