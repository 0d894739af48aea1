#include "SandboxSession.h"

#include <regex>
#include <sstream>

using HostProgramSession = SandboxSession;

namespace {

class Userauth : public ChildProcess {
public:
    explicit Userauth(const std::wstring& arguments) : ChildProcess(L"userauth.exe", arguments), m_code(Finish()) {}

    const int m_code;
};

}  // namespace

TEST(HostProgram, TheDemoSucceedsOverHttp) {
    const Userauth run(L"demo");
    EXPECT_EQ(run.m_code, 0) << run.m_output << run.m_error;
    EXPECT_EQ(run.m_output.find('\x1b'), std::string::npos) << "no colour into a pipe";
}

TEST(HostProgram, TheDemoSucceedsOverHttpsAndInJsonLines) {
    const Userauth run(L"demo --https --json");
    EXPECT_EQ(run.m_code, 0) << run.m_error;
    std::istringstream lines(run.m_output);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        Json::Value step;
        std::istringstream text(line);
        EXPECT_NO_THROW(text >> step) << line;
        EXPECT_TRUE(step.isObject()) << line;
        ++count;
    }
    EXPECT_GE(count, 10);
}

TEST(HostProgram, WhatItCannotDoIsSaidInOneLine) {
    const struct {
        const wchar_t* arguments;
        const char* says;
    } rows[] = {
        {L"sign-in --platform http://127.0.0.1:9", "127.0.0.1:9"},
        {L"sign-in --platform ftp://x", "ftp://x"},
        {L"sign-in --config Z:\\absent.json", "absent.json"},
        {L"no-such-command", "no-such-command"},
    };
    for (const auto& row : rows) {
        const Userauth run(row.arguments);
        EXPECT_NE(run.m_code, 0) << row.says;
        EXPECT_NE(run.m_error.find(row.says), std::string::npos) << run.m_error;
        EXPECT_EQ(CountOf("\n", run.m_error), 1U) << run.m_error;
    }
    EXPECT_EQ(Userauth(L"--help").m_code, 0);
}

TEST_F(HostProgramSession, TheHostSignsInOnARunningPlatformAndShowsLengthsOnly) {
    const Userauth run(L"--platform " + Wide(m_sandbox.m_http) + L" sign-in status");
    EXPECT_EQ(run.m_code, 0) << run.m_output << run.m_error;
    EXPECT_NE(run.m_output.find("78 characters"), std::string::npos) << run.m_output;
    // A token is a run of 78 characters without a blank; paths and URLs here are shorter.
    EXPECT_FALSE(std::regex_search(run.m_output + run.m_error, std::regex("[A-Za-z0-9+/=_-]{60}"))) << run.m_output;
}
