#include "SandboxSession.h"

#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <thread>

namespace {

std::wstring Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::string Compact(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value Parse(const std::string& text) {
    Json::Value value;
    Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) << text;
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

std::filesystem::path TestFolder() {
    static int number = 0;
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        (L"userauth-\u0E17\u0E14-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number));
    std::filesystem::create_directories(folder);
    return folder;
}

// The device keeps its identity for the life of the process, as the service expects.
std::filesystem::path DeviceFolder() {
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("userauth-device-" + std::to_string(GetCurrentProcessId()));
    std::filesystem::create_directories(folder);
    return folder;
}

std::filesystem::path ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

}  // namespace

// The service looks this up in the executable; see core/InvalidParameter.h.
extern "C" __declspec(dllexport) _invalid_parameter_handler UserAuthInvalidParameterHandler() {
    return [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {};
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

SandboxServer::SandboxServer(const std::wstring& arguments) : m_process(L"sandbox-server.exe", arguments) {
    const Json::Value ready = Parse(m_process.ReadLine());
    m_http = ready["http"].asString();
    m_https = ready["https"].asString();
    m_caFile = ready["caFile"].asString();
}

Json::Value SandboxServer::Control(const std::string& path, const Json::Value& body) {
    const std::string text = Compact(body);
    return Exchange(path, &text);
}

Json::Value SandboxServer::Control(const std::string& path) { return Exchange(path, nullptr); }

std::wstring SandboxServer::Url(const std::string& path) const { return Wide(m_http + path); }

void SandboxServer::Fault(const std::string& endpoint, const std::string& faultJson) {
    Json::Value fault = Parse(faultJson);
    fault["endpoint"] = endpoint;
    fault["times"] = 1;
    Control("/sandbox/faults", fault);
}

void SandboxServer::AwaitRequest(const std::string& endpoint, int count) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Control("/sandbox/statistics")["requests"][endpoint].asInt() < count) {
        if (std::chrono::steady_clock::now() > deadline) {
            FAIL() << "no request for " << endpoint;
        }
        Sleep(10);
    }
}

Json::Value SandboxServer::Exchange(const std::string& path, const std::string* body) {
    BasicHttpLibStrategy strategy;
    strategy.SetUrl(Wide(m_http + path));
    if (body != nullptr) {
        strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
        strategy.SetHeaders({{L"Content-Type", L"application/json"}});
        strategy.SetPostData(Wide(*body));
    }
    std::string reply;
    EXPECT_EQ(CurlHttpLibContext(&strategy).Request(reply, 20), 200) << path << " " << reply;
    return Parse(reply);
}

SandboxSession::SandboxSession()
    : m_folder(TestFolder()), m_sandbox(L"--ca-file \"" + (m_folder / "authority.pem").wstring() + L"\"") {
    std::string error;
    EXPECT_TRUE(Logger::Configure({(m_folder / "service.log").wstring()}, error)) << error;
    UsePlatform(m_sandbox.m_http);
    Json::Value sdk;
    sdk["client_id"] = "104862915";
    sdk["platform_url"] = m_sandbox.m_http;
    WriteFile(ProgramFolder() / "ZMSCoreConfig.json", Compact(sdk));
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
    settings["appDataLocalPath"] = m_folder.u8string();
    settings["stateFolder"] = DeviceFolder().u8string();
    Configure(settings);
}

void SandboxSession::UseLegacyItem(const std::string& text) {
    Json::Value settings;
    settings["legacyItems"]["0"] = text;
    Configure(settings);
}

void SandboxSession::Configure(const Json::Value& settings) {
    WriteFile(m_folder / "client.json", Compact(settings));
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
