#include "platform/SandboxProcess.h"

#include <chrono>

#include "system/HostError.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestStart{20};
constexpr DWORD kPollMilliseconds = 10;
constexpr DWORD kLongestEndMilliseconds = 3000;
constexpr UINT kKilled = 1;

std::wstring CommandLine(const std::filesystem::path& program, const std::filesystem::path& certificateAuthority) {
    if (!std::filesystem::exists(program)) {
        throw HostError(kExitStepFailed, "there is no " + ToUtf8(program.wstring()) + ": it belongs to this program");
    }
    return L"\"" + program.wstring() + L"\" --end-with-input --http-port 0 --https-port 0 --ca-file \"" +
           certificateAuthority.wstring() + L"\"";
}

// The address in the line that the sandbox prints when it is ready; its members are empty when it is another line.
SandboxAddress ParseAddress(const std::string& line) {
    const Json::Value root = ParseJsonObject(line).value_or(Json::Value(Json::objectValue));
    return {TextMember(root, "http"), TextMember(root, "https")};
}

}  // namespace

SandboxProcess::SandboxProcess(const std::filesystem::path& program, const std::filesystem::path& certificateAuthority)
    : m_child(StartChildProcess(CommandLine(program, certificateAuthority))), m_address(ParseAddress(ReadLine())) {
    if (m_address.http.empty() || m_address.https.empty()) {
        throw HostError(kExitStepFailed, "sandbox-server.exe does not say where it listens");
    }
}

SandboxProcess::~SandboxProcess() {
    m_child.input.reset();
    if (WaitForSingleObject(m_child.process.get(), kLongestEndMilliseconds) != WAIT_OBJECT_0) {
        TerminateProcess(m_child.process.get(), kKilled);
    }
}

std::string SandboxProcess::ReadLine() {
    std::string line;
    const Clock::time_point end = Clock::now() + kLongestStart;
    while (line.find('\n') == std::string::npos) {
        DWORD available = 0;
        // Ends with the process; what it wrote before is still delivered.
        if (!PeekNamedPipe(m_child.output.get(), nullptr, 0, nullptr, &available, nullptr)) {
            throw HostError(kExitStepFailed, "sandbox-server.exe ended before it was ready");
        }
        if (available == 0) {
            if (Clock::now() >= end) {
                throw HostError(kExitStepFailed, "sandbox-server.exe is not ready after 20 s");
            }
            Sleep(kPollMilliseconds);
            continue;
        }
        char block[1024];
        DWORD size = 0;
        ReadFile(m_child.output.get(), block, sizeof(block), &size, nullptr);
        line.append(block, size);
    }
    return line.substr(0, line.find('\n'));
}

}  // namespace host
