#pragma once

#include <UserAuthService.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <filesystem>

#include "ChildProcess.h"

// The account platform in a process of its own.
class SandboxServer {
public:
    explicit SandboxServer(const std::wstring& arguments = L"");

    // Sends a control request with the suite's HTTP library; fails the test unless it is answered with 200.
    Json::Value Control(const std::string& path, const Json::Value& body);
    Json::Value Control(const std::string& path);
    // The next request of the endpoint meets the fault.
    void Fault(const std::string& endpoint, const std::string& faultJson);

    // Waits until the endpoint has been asked that often; fails the test after ten seconds.
    void AwaitRequest(const std::string& endpoint, int count = 1);

    std::string m_http;
    std::string m_https;
    std::string m_caFile;
    std::wstring Url(const std::string& path) const;

private:
    Json::Value Exchange(const std::string& path, const std::string* body);

    ChildProcess m_process;
};

// A signed-out service on the shipped libraries, the sandbox's account SDK and a sandbox of the test's own.
class SandboxSession : public testing::Test {
protected:
    SandboxSession();
    ~SandboxSession() override;

    // Points every service of the parameter store at a base URL.
    void UsePlatform(const std::string& baseUrl);
    void Configure(const Json::Value& settings);

    // Signs in through the SDK and returns the authorization code that the callback received.
    std::string SignIn();

    // Signs in, exchanges the code and learns the user id.
    void SignInWhole();

    // Gives the parameter store an item that an earlier client version left.
    void UseLegacyItem(const std::string& text);

    std::string LogText();

    std::filesystem::path m_folder;  // of this test: configuration, log, state
    SandboxServer m_sandbox;
    UserAuthService* m_service = nullptr;
};

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& text);
