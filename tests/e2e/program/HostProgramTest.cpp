#include <regex>
#include <sstream>

#include "LegacyItem.h"
#include "SandboxSession.h"

using HostProgramSession = SandboxSession;

namespace {

class Userauth : public ChildProcess {
public:
    explicit Userauth(const std::wstring& arguments) : ChildProcess(L"userauth.exe", arguments), m_code(Finish()) {}

    // The steps of a run with --json by their names; fails the test where a line of the output is no step.
    std::map<std::string, Json::Value> Steps() const {
        std::map<std::string, Json::Value> steps;
        std::istringstream lines(m_output);
        for (std::string line; std::getline(lines, line);) {
            Json::Value step;
            std::istringstream text(line);
            EXPECT_NO_THROW(text >> step) << line;
            EXPECT_TRUE(step.isObject()) << line;
            steps[step.get("step", "").asString()] = step;
        }
        return steps;
    }

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
    EXPECT_GE(run.Steps().size(), 10U);
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

// In the working folder and in one on PATH; support/PlantedModule.cpp.
TEST(HostProgram, ModulesThatSomebodyPlantedAreNotLoaded) {
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const fs::path folder = fs::temp_directory_path() / ("planted-" + std::to_string(GetCurrentProcessId()));
    const fs::path mark = folder / "mark";
    const fs::path places[] = {folder / "working", folder / "on path"};
    for (const fs::path& place : places) {
        fs::create_directories(place);
        for (const char* name : {"ZVAccountSdk.dll", "ntdll.dll", "libcrypto-3-x64.dll", "bcrypt.dll"}) {
            fs::copy_file(ProgramFolder() / "planted-module.dll", place / name);
        }
    }
    wchar_t path[32768] = {};
    GetEnvironmentVariableW(L"PATH", path, std::size(path));
    SetEnvironmentVariableW(L"PATH", (places[1].wstring() + L";" + path).c_str());
    SetEnvironmentVariableW(L"PLANTED_MARK", mark.c_str());
    fs::current_path(places[0]);
    const Userauth run(L"demo --https");
    EXPECT_EQ(run.m_code, 0) << run.m_output << run.m_error;
    EXPECT_FALSE(fs::exists(mark)) << "one of them was loaded";
    for (const fs::path& place : places) {
        fs::remove(mark);
        fs::copy_file(ProgramFolder() / "planted-module.dll", place / "control.dll");
        FreeLibrary(LoadLibraryW(L"control.dll"));
        EXPECT_TRUE(fs::exists(mark)) << "control: a bare name is found in " << place;
        fs::remove(place / "control.dll");
    }
    fs::current_path(before);
    SetEnvironmentVariableW(L"PATH", path);
    SetEnvironmentVariableW(L"PLANTED_MARK", nullptr);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

TEST_F(HostProgramSession, TheHostSignsInOnARunningPlatformAndShowsLengthsOnly) {
    const Userauth run(L"--platform " + Wide(m_sandbox.m_http) + L" sign-in status");
    EXPECT_EQ(run.m_code, 0) << run.m_output << run.m_error;
    EXPECT_NE(run.m_output.find("78 characters"), std::string::npos) << run.m_output;
    // A token is a run of 78 characters without a blank; paths and URLs here are shorter.
    EXPECT_FALSE(std::regex_search(run.m_output + run.m_error, std::regex("[A-Za-z0-9+/=_-]{60}"))) << run.m_output;
}

// A process that never exchanged a code does not know the country, and asks for the registration place without it.
TEST_F(HostProgramSession, ALegacySignInIsTakenOverWithoutTheCountry) {
    SignInWhole();
    const std::string refreshToken = Narrow(m_service->GetCurrentRT());
    std::string configuration = ReadFile(m_folder / "client.json");
    configuration.insert(configuration.rfind('}'),
                         R"(,"legacyItems":{"0":")" + LegacyItem(refreshToken + kLegacyTimeStamp) + "\"}");
    WriteFile(m_folder / "legacy.json", configuration);
    const std::filesystem::path log = m_folder / "host.log";
    const Userauth run(L"migrate registration --json --config \"" + (m_folder / "legacy.json").wstring() +
                       L"\" --log \"" + log.wstring() + L"\"");
    EXPECT_EQ(run.m_code, 0) << run.m_output << run.m_error;
    EXPECT_EQ(run.Steps()["legacy-sign-in"]["fields"]["userId"], "260086000100000001");
    const Json::Value registration = run.Steps()["registration"]["fields"];
    EXPECT_EQ(registration["country"], "none");
    EXPECT_EQ(registration["registeredInChina"], "no") << "though the platform has it there";
    EXPECT_EQ(registration["languageType"], "zh-cn");
    EXPECT_EQ(registration["privilege"], "yes");
    EXPECT_NE(ReadFile(log).find("UpdateRegistInfo successed!"), std::string::npos) << "control step";
    EXPECT_EQ((run.m_output + ReadFile(log)).find(refreshToken), std::string::npos);
}
