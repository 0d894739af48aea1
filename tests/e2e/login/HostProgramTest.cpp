#include "SandboxSession.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace {

struct HostRun {
    int code;
    std::string output;
    std::string error;
};

HostRun Userauth(const std::wstring& arguments) {
    ChildProcess host(L"userauth.exe", arguments);
    const int code = host.Finish();
    return {code, host.m_output, host.m_error};
}

std::size_t LineCount(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

TEST(HostProgram, TheDemoSucceedsOverHttpAndHttps) {
    for (const wchar_t* arguments : {L"demo", L"demo --https"}) {
        const HostRun run = Userauth(arguments);
        EXPECT_EQ(run.code, 0) << run.output << run.error;
        EXPECT_EQ(run.output.find('\x1b'), std::string::npos) << "no colour into a pipe";
    }
}

TEST(HostProgram, JsonLinesAreForMachines) {
    const HostRun run = Userauth(L"demo --json");
    EXPECT_EQ(run.code, 0) << run.error;
    std::istringstream lines(run.output);
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
        const HostRun run = Userauth(row.arguments);
        EXPECT_NE(run.code, 0) << row.says;
        EXPECT_NE(run.error.find(row.says), std::string::npos) << run.error;
        EXPECT_EQ(LineCount(run.error), 1U) << run.error;
    }
    EXPECT_EQ(Userauth(L"--help").code, 0);
}

TEST_F(SandboxSession, TheHostSignsInOnARunningPlatformAndShowsLengthsOnly) {
    const HostRun run =
        Userauth(L"--platform " + std::wstring(m_sandbox.m_http.begin(), m_sandbox.m_http.end()) + L" sign-in status");
    EXPECT_EQ(run.code, 0) << run.output << run.error;
    EXPECT_NE(run.output.find("78 characters"), std::string::npos) << run.output;
    // A token is a run of 78 characters without a blank; paths and URLs here are shorter.
    EXPECT_FALSE(std::regex_search(run.output + run.error, std::regex("[A-Za-z0-9+/=_-]{60}"))) << run.output;
}
