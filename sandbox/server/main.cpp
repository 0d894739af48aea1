#include <windows.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "Endpoints.h"
#include "Options.h"
#include "contacts/Endpoints.h"
#include "crypto/Certificates.h"
#include "http/HttpFrontEnd.h"
#include "http/JsonText.h"
#include "http/RecordingServer.h"
#include "page/BrowserGuard.h"
#include "page/Endpoints.h"
#include "profile/Endpoints.h"
#include "synckey/Endpoints.h"
#include "sysconf/Endpoints.h"
#include "token/Endpoints.h"

namespace sandbox {
namespace {

constexpr const char* kLoopback = "127.0.0.1";

void WriteAuthority(const std::string& path, const std::string& pem) {
    std::ofstream file(std::filesystem::u8path(path), std::ios::binary | std::ios::trunc);
    file << pem;
    file.close();
    if (!file) {
        throw std::runtime_error("the file " + path +
                                 " cannot be written: give --ca-file a path in a folder that exists");
    }
}

int Bind(httplib::Server& server, int port) {
    const int bound = port == 0 ? server.bind_to_any_port(kLoopback) : server.bind_to_port(kLoopback, port) ? port : -1;
    if (bound < 0) {
        throw std::runtime_error("port " + std::to_string(port) +
                                 " of 127.0.0.1 cannot be taken: another program has it, or it is not allowed");
    }
    return bound;
}

// Called before the server is bound: a TLS context belongs to one thread until then.
void LimitTls(SSL_CTX* context, const std::string& highest) {
    const bool old = highest == "1.1";
    RequireOpenSsl(SSL_CTX_set_min_proto_version(context, old ? TLS1_1_VERSION : TLS1_2_VERSION) == 1 &&
                       SSL_CTX_set_max_proto_version(context, old                ? TLS1_1_VERSION
                                                              : highest == "1.2" ? TLS1_2_VERSION
                                                                                 : TLS1_3_VERSION) == 1,
                   "limiting the TLS version");
    if (old) {
        SSL_CTX_set_security_level(context, 0);  // TLS 1.1 signs with SHA-1
    }
}

// A bound server that serves on a thread of its own until it is destroyed.
template <typename Server>
class RunningServer {
public:
    explicit RunningServer(Server& server) : m_server(server), m_thread([this] { Listen(); }) {
        // Stopping has no effect on a server that does not run yet.
        while (!m_server.is_running() && !m_failed) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    ~RunningServer() { Stop(); }
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    // Returns after the last connection; false when the server had stopped by itself.
    bool Stop() {
        m_server.stop();
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return !m_failed;
    }

private:
    void Listen() {
        if (!m_server.listen_after_bind()) {
            m_failed = true;
            std::cerr << "sandbox-server: a listener failed; it takes no more connections" << std::endl;
        }
    }

    Server& m_server;
    std::atomic<bool> m_failed{false};
    std::thread m_thread;
};

void AnnounceReady(int httpPort, int httpsPort, const std::string& authorityFile) {
    std::cout << JsonLine(JsonObject({{"http", "http://127.0.0.1:" + std::to_string(httpPort)},
                                      {"https", "https://127.0.0.1:" + std::to_string(httpsPort)},
                                      {"caFile", authorityFile}}))
              << std::endl;
}

HANDLE EndEvent() {
    static const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

// Ctrl-C, Ctrl-Break, or the console's window is closed. Runs on a thread of its own.
BOOL WINAPI OnConsoleEvent(DWORD kind) {
    SetEvent(EndEvent());
    if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) {
        Sleep(INFINITE);  // the system ends the process when this returns; main is to return first
    }
    return TRUE;
}

void WaitForEnd(bool ofInput) {
    if (!ofInput) {
        WaitForSingleObject(EndEvent(), INFINITE);
        return;
    }
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
}

// The services of the platform and everything that they keep.
struct Platform {
    Platform();

    // Everything as at start, but for the counts of connections and requests.
    void Reset();

    const BrowserGuard guard;
    PlatformState state;
    SignInRequests signIns;
    FaultTable faults;
    TrafficLog traffic;
    UserKeyPlatform userKeys{state.Accounts()};
    SettingsTable settings{state.Accounts()};
    OperationRecords records;
    ContactExports contacts;
    EndpointTable endpoints;
};

Platform::Platform() {
    AddCodeExchangeEndpoint(endpoints, state);
    AddRefreshEndpoint(endpoints, state);
    AddApplicationTokenEndpoint(endpoints, state);
    AddRegistrationEndpoint(endpoints, state);
    AddGatewayEndpoint(endpoints, state);
    AddUserInformationEndpoints(endpoints, state);
    AddPhotoEndpoints(endpoints, state);
    AddRoutingEndpoints(endpoints);
    AddUserKeyEndpoints(endpoints, state, userKeys);
    AddBasicServiceEndpoints(endpoints, state, settings, records);
    AddLoginDevicesEndpoint(endpoints, state, records);
    AddContactsEndpoint(endpoints, contacts);

    AddSandboxEndpoints(endpoints, state, signIns, faults, traffic);
    AddUserKeyControl(endpoints, state, userKeys);
    AddBasicServiceControl(endpoints, state, settings, records);
    AddContactsControl(endpoints, state, contacts);
    endpoints.Add("POST", "/sandbox/reset", [this](const PlatformRequest&) {
        Reset();
        return JsonReply(Json::Value(Json::objectValue));
    });

    AddPageFileEndpoints(endpoints, guard);
    AddPageEndpoints(endpoints, {state, settings, faults, traffic, signIns});
    AddSignInPageEndpoints(endpoints, state, signIns);
}

void Platform::Reset() {
    faults.Clear();
    state.Reset();
    signIns.Clear();
    userKeys.lists.Reset();
    userKeys.exchange.Replace({});
    settings.Reset();
    records.Clear();
    contacts.Clear();
    traffic.ForgetShown();
}

// Of what is under /sandbox only a sign-in is a client's own doing.
bool IsShown(const PlatformRequest& request) {
    return !IsOfSandbox(request.path) || (request.method == "POST" && request.path == "/sandbox/sign-in");
}

// Serves until it is told to end. False when a listener failed meanwhile, which has been reported.
bool Serve(const Options& options) {
    const auto identity = MakeServerIdentity(options.tlsName);
    Platform platform;
    auto& traffic = platform.traffic;
    HttpFrontEnd frontEnd(
        platform.endpoints, platform.faults, traffic,
        {[&platform](const PlatformRequest& request) { return platform.guard.Refusal(request); }, IsShown});
    traffic.AddListener("http");
    traffic.AddListener("https");
    RecordingHttpServer http([&] { traffic.CountConnection("http"); });
    RecordingHttpsServer https(identity.certificate.get(), identity.key.get(),
                               [&] { traffic.CountConnection("https"); });
    RequireOpenSsl(https.is_valid(), "setting up TLS");
    LimitTls(https.ssl_context(), options.tlsMax);
    frontEnd.Attach(http);
    frontEnd.Attach(https);
    const int httpPort = Bind(http, options.httpPort);
    const int httpsPort = Bind(https, options.httpsPort);
    if (!options.authorityFile.empty()) {
        WriteAuthority(options.authorityFile, identity.authorityPem);
    }

    RunningServer<RecordingHttpServer> runningHttp(http);
    RunningServer<RecordingHttpsServer> runningHttps(https);
    if (!options.endWithInput) {
        SetConsoleCtrlHandler(OnConsoleEvent, TRUE);  // without it Ctrl-C ends the process at once
    }
    AnnounceReady(httpPort, httpsPort, options.authorityFile);
    WaitForEnd(options.endWithInput);
    frontEnd.Stop();
    const bool httpServed = runningHttp.Stop();
    return runningHttps.Stop() && httpServed;
}

}  // namespace
}  // namespace sandbox

int main() {
    try {
        const auto commandLine = sandbox::ReadCommandLine();
        return commandLine.run && !sandbox::Serve(commandLine.options) ? 1 : commandLine.exitCode;
    } catch (const std::exception& error) {
        std::cerr << "sandbox-server: " << error.what() << std::endl;
        return 1;
    }
}
