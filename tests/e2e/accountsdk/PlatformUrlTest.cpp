#include <windows.h>

#include <ParamStore.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include "ChildProcess.h"
#include "TextFile.h"

namespace {

// The sandbox's account SDK without a configuration of its own, its exports called as the service calls them.
class SandboxSdk : public testing::Test {
protected:
    SandboxSdk() : m_library(LoadLibraryW((ProgramFolder() / "ZVAccountSdk.dll").wstring().c_str())) {
        std::filesystem::remove(m_file);
    }
    ~SandboxSdk() override {
        Use(nullptr);
        Call<int>("Uninit");
        std::filesystem::remove(m_file);
        FreeLibrary(m_library);
    }

    static void Use(const wchar_t* platformUrl) { SetEnvironmentVariableW(L"ZVACCOUNTSDK_PLATFORM_URL", platformUrl); }

    template <typename Result, typename... Arguments>
    Result Call(const char* name, Arguments... arguments) {
        // By way of an untyped pointer, which the compiler lets us convert.
        void* const address = reinterpret_cast<void*>(GetProcAddress(m_library, name));
        return reinterpret_cast<Result (*)(Arguments...)>(address)(arguments...);
    }

    const std::filesystem::path m_file = ProgramFolder() / "ZMSCoreConfig.json";
    const HMODULE m_library;
};

constexpr int kOk = 0;
constexpr int kConfigurationMissing = 101;
constexpr int kConfigurationInvalid = 102;

}  // namespace

// Written twice, on purpose: the sandbox shares no source with the suite.
TEST_F(SandboxSdk, JudgesBaseUrlsAsTheParameterStoreDoes) {
    const struct {
        const wchar_t* url;
        bool good;
    } rows[] = {
        {L"http://h", true},       {L"HTTP://h:8080", true},     {L"http://h/base", true},
        {L"http://h:", true},      {L"http://[::1]:80", true},   {L"http://[::1]", true},
        {L"http://h:65535", true}, {L"http://h:99999", false},   {L"http://h:0", false},
        {L"http://h:80x", false},  {L"http://h:80:90", false},   {L"http://h:99999999999999999999", false},
        {L"http://[::1", false},   {L"http://h:-1/base", false}, {L"http://h\n", false},
        {L"http://h\x7F", false},  {L"http://h\\base", false},   {L"http://h/", false},
        {L"http://", false},       {L"http://:80", false},       {L"http:///base", false},
        {L"http://u@h", false},    {L"http://h?q", false},       {L"http://h#f", false},
        {L"http://h h", false},    {L"ftp://h", false},          {L"http://:]", false},
        {L"http://[]", false},     {L"http://[::1]x", false},    {L"http://h]:80", false},
    };
    std::string error;
    for (const auto& row : rows) {
        Json::Value settings;
        settings["portalUrl"] = Narrow(row.url);
        EXPECT_EQ(GlobalParamWrapper::GetInstance()->LoadConfigurationText(settings.toStyledString(), error), row.good)
            << Narrow(row.url) << error;
        Use(row.url);
        EXPECT_EQ(Call<int>("Init"), row.good ? kOk : kConfigurationInvalid) << Narrow(row.url);
        EXPECT_EQ(Call<const char*>("GetOAuthDomain"), row.good ? Narrow(row.url) : "") << Narrow(row.url);
    }
    Use(L"https://h");
    EXPECT_EQ(Call<int>("Init"), kConfigurationInvalid) << "this SDK speaks plain HTTP only";
}

TEST_F(SandboxSdk, AsksTheEnvironmentForThePlatformBeforeTheFile) {
    const struct {
        const wchar_t* variable;
        const char* file;  // null: there is none
        int code;
        const char* url;
    } rows[] = {
        {nullptr, nullptr, kConfigurationMissing, ""},
        {L"", nullptr, kConfigurationMissing, ""},
        {L"http://e", nullptr, kOk, "http://e"},
        {nullptr, R"({"client_id":"104862915","platform_url":"http://f"})", kOk, "http://f"},
        {L"http://e", R"({"client_id":"104862915","platform_url":"http://f"})", kOk, "http://e"},
        {L"http://e", R"({"client_id":"104862915"})", kOk, "http://e"},
        {L"http://e", R"({"client_id":"1"})", kConfigurationInvalid, ""},
        {L"http://e", "no JSON", kConfigurationInvalid, ""},
        {L"e", R"({"client_id":"104862915","platform_url":"http://f"})", kConfigurationInvalid, ""},
    };
    for (const auto& row : rows) {
        std::filesystem::remove(m_file);
        if (row.file != nullptr) {
            WriteFile(m_file, row.file);
        }
        Use(row.variable);
        const std::string name = std::string(row.file != nullptr ? row.file : "no file") + ", " + row.url;
        EXPECT_EQ(Call<int>("Init"), row.code) << name;
        EXPECT_EQ(Call<const char*>("GetOAuthDomain"), std::string(row.url)) << name;
        // The client id of the file is what a sign-in has to have.
        constexpr int kWrongApplicationId = 105;
        constexpr int kWrongScopes = 106;
        if (row.code == kOk) {
            EXPECT_EQ(Call<int>("SignIn", "999999999", "s", "l"),
                      row.file != nullptr ? kWrongApplicationId : kWrongScopes)
                << name;
        }
    }
}
