// The server runs in another process here, so that its share does not count.

#include <HttpLib.h>
#include <windows.h>
// psapi.h comes after windows.h.
#include <psapi.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "Authorities.h"
#include "Platform.h"
#include "ServiceAccess.h"
#include "Subjects.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kConnections = 32;

double MegabytesInUse() {
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<double>(counters.WorkingSetSize) / 1e6;
}

std::string ReadText(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// This program once more, as the platform of ServePlatform.
class PlatformProcess {
public:
    PlatformProcess() : m_file(WritePem("-platform.txt", "")) {
        wchar_t program[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring line = L"\"" + std::wstring(program) + L"\" --serve \"" + m_file.wstring() + L"\"";
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        Require(CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process),
                "CreateProcess");
        for (int wait = 0; m_text.find('\n') == std::string::npos; ++wait) {
            Require(wait < 200, "the platform's start");
            Sleep(100);
            m_text = ReadText(m_file);
        }
    }
    ~PlatformProcess() {
        TerminateProcess(m_process.hProcess, 0);
        CloseHandle(m_process.hProcess);
        CloseHandle(m_process.hThread);
        fs::remove(m_file);
    }
    PlatformProcess(const PlatformProcess&) = delete;
    PlatformProcess& operator=(const PlatformProcess&) = delete;

    std::string Origin() const { return m_text.substr(0, m_text.find('\n')); }
    std::string AuthorityPem() const { return m_text.substr(m_text.find('\n') + 1); }

private:
    const fs::path m_file;
    std::string m_text;
    PROCESS_INFORMATION m_process = {};
};

// All at once, so that each has a connection of its own.
void AskAtOnce(int count) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([] { Require(Service().RequestUserID(), "RequestUserID"); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

double MegabytesOfConnection() {
    AskAtOnce(1);
    const double before = MegabytesInUse();
    AskAtOnce(kConnections + 1);
    return (MegabytesInUse() - before) / kConnections;
}

}  // namespace

void ServePlatform(const std::string& file) {
    static LoopbackServer server(LoopbackServer::Scheme::kHttps);
    AnswerAsPlatform(server, 500);
    std::ofstream(fs::u8path(file), std::ios::binary) << server.Origin() << "\n" << server.AuthorityPem();
    Sleep(120'000);  // at the latest; the program that asks ends it sooner
}

void BenchMemory(Report& report) {
    const std::string what = "memory";
    if (!report.Wants(what + " of an idle connection")) {
        return;
    }
    const PlatformProcess platform;
    const fs::path authority = WritePem("-authority.pem", platform.AuthorityPem());
    const fs::path bundle = WritePem("-bundle.pem", Bundle(platform.AuthorityPem()));
    report.Figure(what + " after load", {}, "MB", MegabytesInUse());
    UsePlatform(platform.Origin());
    CurlHttpLibContext::SetDefaultCertPath(authority.wstring());
    Require(Service().RequestAT({}, "code-of-the-bench") && Service().RequestUserID(), "sign-in");
    report.Figure(what + " after sign-in", {}, "MB", MegabytesInUse());
    report.Figure(what + " of an idle connection over https", {}, "MB", MegabytesOfConnection());
    CurlHttpLibContext::SetDefaultCertPath(bundle.wstring());
    report.Figure(what + " of an idle connection with a bundle of 220 KB", {}, "MB", MegabytesOfConnection());
    CurlHttpLibContext::SetDefaultCertPath({});
    fs::remove(authority);
    fs::remove(bundle);
}

}  // namespace bench
