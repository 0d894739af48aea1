#include <regex>

#include "LegacyItem.h"
#include "SandboxSession.h"
#include "Userauth.h"

using HostProgramSession = SandboxSession;

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

TEST(HostProgram, APlatformThatIsNotThereIsSaidInOneLine) {
    const Userauth run(L"sign-in --platform http://127.0.0.1:9");
    EXPECT_NE(run.m_code, 0);
    EXPECT_NE(run.m_error.find("127.0.0.1:9"), std::string::npos) << run.m_error;
    EXPECT_EQ(CountOf("\n", run.m_error), 1U) << run.m_error;
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

// A host that calls an operation good whatever the service answers would show nothing.
TEST_F(HostProgramSession, AnOperationThatFailsIsAStepThatFails) {
    const std::string pc = "/KeCloudUserFoundationService/PC/";
    const std::string user = "/KeCloudUserInformationService/v1/";
    const struct {
        const wchar_t* command;
        std::string endpoint;
        const char* step;
        const char* fault = R"({"status":500})";
    } rows[] = {
        {L"whoami", "/gateway", "gateway-user-id"},
        {L"whoami", "/gateway", "gateway-user-id", R"({"body":"{\"uid\":\"\"}"})"},
        {L"whoami", "/gateway", "sync-server-user-id", R"({"body":"{\"uid\":\"another\"}"})"},
        {L"whoami", "/drive/v1/about", "sync-server-user-id"},
        {L"registration", "/pcclient/getRegisterInfo", "registration"},
        {L"modules", "/drive/v1/about", "user-id"},
        {L"modules", pc + "sysConfInit", "system-configuration"},
        {L"activate", pc + "sysConfRefresh", "activation"},
        {L"report", pc + "postOpDesc", "report"},
        {L"report", pc + "getUserRegister", "client-logs"},
        {L"devices", pc + "getLastOperationRecord", "login-devices"},
        {L"refresh", "/pcclient/refreshtoken", "refresh"},
        {L"refresh", "/pcclient/refreshtoken", "refresh", R"({"body":"{}"})"},
        {L"application-token", "/pcclient/getAppAccessToken", "application-token"},
        {L"application-token", "/pcclient/getAppAccessToken", "application-token", R"({"body":"{}"})"},
        {L"keys", user + "keys/publicKey", "sync-keys"},
        {L"keys", user + "keys", "sync-keys"},
        {L"migrate", "/pcclient/refreshtoken", "legacy-sign-in"},
    };
    const std::wstring platform = L" status --json --platform " + Wide(m_sandbox.m_http);
    for (const auto& row : rows) {
        m_sandbox.Fault(row.endpoint, row.fault);
        const Userauth run(L"sign-in " + (row.command + platform));
        const std::string name = Narrow(row.command) + " " + row.endpoint + row.fault;
        EXPECT_EQ(run.m_code, 1) << name << run.m_output << run.m_error;
        auto steps = run.Steps();
        EXPECT_TRUE(steps["request-at"]["ok"].asBool()) << name;
        EXPECT_TRUE(steps[row.step].isMember("ok") && !steps[row.step]["ok"].asBool()) << name << run.m_output;
        EXPECT_EQ(steps.count("status"), 0U) << name << ": the first failure ends the session";
        EXPECT_TRUE(steps["close-sdk"]["ok"].asBool()) << name << ": but the SDK is released";
    }
}
