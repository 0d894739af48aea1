#include "SandboxSession.h"

#include <Logger.h>
#include <ParamStore.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <sstream>
#include <thread>

#include "HttpCall.h"

namespace {

Json::Value Parse(const std::string& text) {
    Json::Value value;
    std::istringstream stream(text);
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, nullptr)) << text;
    return value;
}

// What the SDK's callback delivered last.
struct Notification {
    std::mutex mutex;
    std::condition_variable arrived;
    bool present = false;
    MessageType type{};
    std::string first;
    std::thread::id thread;
} g_notification;

void OnNotification(MessageType type, char* first, char*) {
    const std::lock_guard<std::mutex> hold(g_notification.mutex);
    g_notification.present = true;
    g_notification.type = type;
    g_notification.first = first;
    g_notification.thread = std::this_thread::get_id();
    g_notification.arrived.notify_all();
}

// A folder of this process, below the system's temporary folder.
std::filesystem::path TemporaryFolder(const std::wstring& name) {
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / (name + L"-" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(folder);
    return folder;
}

std::filesystem::path TestFolder() {
    static int number = 0;
    return TemporaryFolder(L"userauth-\u0E17\u0E14-" + std::to_wstring(++number));
}

}  // namespace

// The service looks this up in the executable; see core/InvalidParameter.h.
extern "C" __declspec(dllexport) _invalid_parameter_handler UserAuthInvalidParameterHandler() {
    return [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {};
}

SandboxServer::SandboxServer(const std::wstring& arguments)
    : m_process(L"sandbox-server.exe", L"--end-with-input " + arguments) {
    const Json::Value ready = Parse(m_process.ReadLine());
    m_http = ready["http"].asString();
    m_https = ready["https"].asString();
}

Json::Value SandboxServer::Control(const std::string& path, const std::string& json) {
    HttpCall call(Url(path), {{L"Content-Type", L"application/json"}});
    EXPECT_EQ(json.empty() ? call.Send(20) : call.Post(Wide(json), 20), 200) << path << " " << call.response;
    return Parse(call.response);
}

void SandboxServer::Fault(const std::string& endpoint, const std::string& faultJson) {
    Control("/sandbox/faults", R"({"endpoint":")" + endpoint + R"(","times":1,)" + faultJson.substr(1));
}

int SandboxServer::Requests(const std::string& endpoint) {
    return Control("/sandbox/statistics")["requests"][endpoint].asInt();
}

void SandboxServer::AwaitRequest(const std::string& endpoint, int count) {
    for (int tries = 0; tries < 1000 && Requests(endpoint) < count; ++tries) {
        Sleep(10);
    }
    EXPECT_GE(Requests(endpoint), count) << endpoint;
}

std::map<std::wstring, std::wstring> SandboxServer::PortalCookies() {
    std::map<std::wstring, std::wstring> cookies;
    const Json::Value login = Control("/sandbox/portal-login");
    for (const std::string& name : login["cookies"].getMemberNames()) {
        cookies[Wide(name)] = Wide(login["cookies"][name].asString());
    }
    return cookies;
}

SandboxSession::SandboxSession()
    : m_folder(TestFolder()), m_sandbox(L"--ca-file \"" + (m_folder / "authority.pem").wstring() + L"\"") {
    std::string error;
    EXPECT_TRUE(Logger::Configure({(m_folder / "service.log").wstring()}, error)) << error;
    UsePlatform(m_sandbox.m_http);
    WriteFile(ProgramFolder() / "ZMSCoreConfig.json",
              R"({"client_id":"104862915","platform_url":")" + m_sandbox.m_http + "\"}");
    m_service = UserAuthService::GetInstance();
    EXPECT_EQ(m_service->InitZms(OnNotification), 0);
}

SandboxSession::~SandboxSession() {
    m_service->Clear();
    m_service->UnInitializeSDK();
    CurlHttpLibContext::SetDefaultCertPath(L"");
    Logger::Shutdown();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void SandboxSession::UsePlatform(const std::string& baseUrl) {
    Json::Value settings;
    for (const char* key :
         {"portalUrl", "gatewayUrl", "syncServerUrl", "userInformationServiceUrl", "basicServiceUrl"}) {
        settings[key] = baseUrl;
    }
    settings["gatewayUrl"] = baseUrl + "/gateway";
    settings["countryCode"] = "";  // as these two are at first: another test of the process may have set them
    settings["clientMode"] = "1";
    settings["appDataLocalPath"] = m_folder.u8string();
    // The device keeps its identity for the life of the process, as the service expects.
    settings["stateFolder"] = TemporaryFolder(L"userauth-device").u8string();
    WriteFile(m_folder / "client.json", Json::writeString(Json::StreamWriterBuilder(), settings));
    std::string error;
    EXPECT_TRUE(GlobalParamWrapper::GetInstance()->LoadConfiguration((m_folder / "client.json").wstring(), error))
        << error;
}

std::string SandboxSession::SignIn() {
    std::unique_lock<std::mutex> hold(g_notification.mutex);
    g_notification.present = false;
    hold.unlock();
    EXPECT_EQ(m_service->ZmsSignIn(), ZvIdErrorType::kSuccess);
    hold.lock();
    EXPECT_TRUE(g_notification.arrived.wait_for(hold, std::chrono::seconds(15), [] { return g_notification.present; }));
    EXPECT_EQ(g_notification.type, MessageType::kSignInSucceeded) << g_notification.first;
    EXPECT_NE(g_notification.thread, std::this_thread::get_id());
    return g_notification.first;
}

void SandboxSession::SignInWhole() {
    const std::string code = SignIn();
    ASSERT_TRUE(m_service->RequestAT("", code.c_str())) << LogText();
    ASSERT_TRUE(m_service->RequestUserIdFromSyncServer()) << LogText();
}

std::string SandboxSession::LogText() {
    EXPECT_TRUE(Logger::Flush(5000));
    return ReadFile(m_folder / "service.log") + ReadFile(m_folder / "service.log.operations.jsonl");
}
