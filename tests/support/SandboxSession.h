#pragma once

#include <UserAuthService.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <filesystem>
#include <map>

#include "ChildProcess.h"
#include "TextFile.h"

// The account platform in a process of its own.
class SandboxServer {
public:
    explicit SandboxServer(const std::wstring& arguments = L"");

    // Sends a control request, a POST when it has a JSON text; fails the test unless it is answered with 200.
    Json::Value Control(const std::string& path, const std::string& json = "");
    // The next request of the endpoint meets the fault.
    void Fault(const std::string& endpoint, const std::string& faultJson);
    // How often the endpoint has been asked.
    int Requests(const std::string& endpoint);
    // Waits 10 seconds for the request with that number.
    void AwaitRequest(const std::string& endpoint, int count);
    // What a browser holds that is signed in at the contacts portal.
    std::map<std::wstring, std::wstring> PortalCookies();
    std::wstring Url(const std::string& path) const { return Wide(m_http + path); }

    std::string m_http;
    std::string m_https;

private:
    ChildProcess m_process;
};

// A signed-out service on the shipped libraries, the sandbox's account SDK and a sandbox of the test's own.
class SandboxSession : public testing::Test {
protected:
    SandboxSession();
    ~SandboxSession() override;

    // Points every service of the parameter store at a base URL, by "client.json" in the test's folder.
    void UsePlatform(const std::string& baseUrl);

    // Signs in through the SDK and returns the authorization code that the callback received.
    std::string SignIn();

    // Signs in, exchanges the code and learns the user id.
    void SignInWhole();

    std::string LogText();

    // Where the service keeps it, as it writes the path.
    std::filesystem::path Portrait() const { return m_folder.wstring() + L"\\HeadPortrait"; }

    std::filesystem::path m_folder;  // of this test: configuration, log, state
    SandboxServer m_sandbox;
    UserAuthService* m_service = nullptr;
};
