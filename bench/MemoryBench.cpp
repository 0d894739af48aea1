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
    PlatformProcess() : m_file(WriteText("-platform.txt", "")) {
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

// What a request costs for good with a file of authorities that was not read before, and what each connection costs,
// its handle included.
void BenchConnections(Report& report) {
    const std::string first = "memory of a bundle of 220 KB and its first connection";
    const std::string each = "memory of an idle connection with that bundle";
    if (!report.Wants(first) && !report.Wants(each)) {
        return;
    }
    const PlatformProcess platform;
    const fs::path bundle = WriteText("-bundle.pem", Bundle(platform.AuthorityPem()));
    UsePlatform(platform.Origin());
    CurlHttpLibContext::SetDefaultCertPath(bundle.wstring());
    const double before = MegabytesInUse();
    AskAtOnce(1);
    const double afterFirst = MegabytesInUse();
    AskAtOnce(kConnections + 1);
    report.Figure(first, {}, "MB", afterFirst - before);
    report.Figure(each, {}, "MB", (MegabytesInUse() - afterFirst) / kConnections);
    CurlHttpLibContext::SetDefaultCertPath({});
    fs::remove(bundle);
}

void BenchSignIn(Report& report) {
    const double afterLoad = MegabytesInUse();
    report.Figure("memory after load", {}, "MB", afterLoad);
    const std::string what = "memory after sign-in";
    if (!report.Wants(what)) {
        return;
    }
    const PlatformProcess platform;
    const fs::path authority = WriteText("-authority.pem", platform.AuthorityPem());
    UsePlatform(platform.Origin());
    CurlHttpLibContext::SetDefaultCertPath(authority.wstring());
    Require(Service().RequestAT({}, "code-of-the-bench") && Service().RequestUserID(), "sign-in");
    report.Figure(what, {}, "MB", MegabytesInUse());
    CurlHttpLibContext::SetDefaultCertPath({});
    fs::remove(authority);
}

}  // namespace

void ServePlatform(const std::string& file) {
    static LoopbackServer server(LoopbackServer::Scheme::kHttps);
    AnswerAsPlatform(server, 500);
    std::ofstream(fs::path(file), std::ios::binary) << server.Origin() << "\n" << server.AuthorityPem();
    Sleep(120'000);  // at the latest; the program that asks ends it sooner
}

void BenchMemory(Report& report) {
    BenchSignIn(report);
    BenchConnections(report);
}

}  // namespace bench
