#include "platform/SandboxProcess.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

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

struct Pipe {
    WindowsHandle ours;
    WindowsHandle theirs;  // the one that may be inherited
};

Pipe MakePipe(bool theyRead) {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    RequireDone(CreatePipe(&read, &write, nullptr, 0), "cannot make a pipe");
    Pipe pipe{WindowsHandle(theyRead ? write : read), WindowsHandle(theyRead ? read : write)};
    RequireDone(SetHandleInformation(pipe.theirs.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT),
                "cannot share a pipe");
    return pipe;
}

WindowsHandle InheritableStandardError() {
    HANDLE copy = nullptr;
    const HANDLE self = GetCurrentProcess();
    const BOOL made =
        DuplicateHandle(self, GetStdHandle(STD_ERROR_HANDLE), self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS);
    return WindowsHandle(made ? copy : nullptr);
}

// The attribute list that limits what a new process inherits to the given handles, which must outlive it.
class InheritedHandles {
public:
    explicit InheritedHandles(std::vector<HANDLE>& handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_storage.resize(size);
        const auto list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_storage.data());
        RequireDone(InitializeProcThreadAttributeList(list, 1, 0, &size), "cannot prepare a process");
        m_list.reset(list);
        RequireDone(UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                              handles.size() * sizeof(HANDLE), nullptr, nullptr),
                    "cannot prepare a process");
    }

    LPPROC_THREAD_ATTRIBUTE_LIST List() const { return m_list.get(); }

private:
    struct Delete {
        using pointer = LPPROC_THREAD_ATTRIBUTE_LIST;
        void operator()(pointer list) const noexcept { DeleteProcThreadAttributeList(list); }
    };

    std::vector<std::byte> m_storage;
    std::unique_ptr<void, Delete> m_list;  // in the storage
};

// A job ends its processes when its handle is closed. The system closes it for us when this process is killed.
WindowsHandle MakeKillingJob() {
    WindowsHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

// Starts a program with pipes as its standard input and output. It shares our standard error and inherits no other
// handle.
ChildProcess StartChildProcess(std::wstring commandLine) {
    Pipe input = MakePipe(true);
    Pipe output = MakePipe(false);
    const WindowsHandle error = InheritableStandardError();
    std::vector<HANDLE> handles = {input.theirs.get(), output.theirs.get()};
    if (error) {
        handles.push_back(error.get());
    }
    const InheritedHandles inherited(handles);

    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof(startup);
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.theirs.get();
    startup.StartupInfo.hStdOutput = output.theirs.get();
    startup.StartupInfo.hStdError = error.get();
    startup.lpAttributeList = inherited.List();

    // Suspended until it belongs to the job, so that it cannot escape it.
    const DWORD flags = EXTENDED_STARTUPINFO_PRESENT | CREATE_SUSPENDED;
    PROCESS_INFORMATION started = {};
    RequireDone(CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr,
                               &startup.StartupInfo, &started),
                "cannot start " + ToUtf8(commandLine));
    const WindowsHandle thread(started.hThread);
    ChildProcess child{MakeKillingJob(), WindowsHandle(started.hProcess), std::move(input.ours),
                       std::move(output.ours)};
    if (child.job && !AssignProcessToJobObject(child.job.get(), child.process.get())) {
        child.job.reset();
    }
    ResumeThread(thread.get());
    return child;
}

std::wstring CommandLine(const std::filesystem::path& program, const std::filesystem::path& certificateAuthority) {
    if (!std::filesystem::exists(program)) {
        throw HostError(kExitStepFailed, "there is no " + ToUtf8(program.wstring()) + ": it belongs to this program");
    }
    return L"\"" + program.wstring() + L"\" --end-with-input --http-port 0 --https-port 0 --ca-file \"" +
           certificateAuthority.wstring() + L"\"";
}

// The sandbox prints its addresses in one line when it is ready. They are empty when it is another line.
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
        // Fails when the process has ended and everything that it wrote has been read.
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
