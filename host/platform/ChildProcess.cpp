#include "platform/ChildProcess.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "system/HostError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

struct Pipe {
    WindowsHandle ours;
    WindowsHandle theirs;  // the one that may be inherited
};

Pipe MakePipe(bool theyRead) {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, nullptr, 0)) {
        FailWithSystemError("cannot make a pipe", GetLastError());
    }
    Pipe pipe{WindowsHandle(theyRead ? write : read), WindowsHandle(theyRead ? read : write)};
    if (!SetHandleInformation(pipe.theirs.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT)) {
        FailWithSystemError("cannot share a pipe", GetLastError());
    }
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
        if (!InitializeProcThreadAttributeList(List(), 1, 0, &size)) {
            FailWithSystemError("cannot prepare a process", GetLastError());
        }
        if (!UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                       handles.size() * sizeof(HANDLE), nullptr, nullptr)) {
            const DWORD error = GetLastError();
            DeleteProcThreadAttributeList(List());
            FailWithSystemError("cannot prepare a process", error);
        }
    }
    ~InheritedHandles() { DeleteProcThreadAttributeList(List()); }
    InheritedHandles(const InheritedHandles&) = delete;
    InheritedHandles& operator=(const InheritedHandles&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST List() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_storage.data()); }

private:
    std::vector<std::byte> m_storage;
};

// A job that ends its processes when it is closed, which the system does for us when this process is killed.
WindowsHandle MakeKillingJob() {
    WindowsHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

}  // namespace

ChildProcess StartChildProcess(std::wstring commandLine) {
    Pipe input = MakePipe(true);
    Pipe output = MakePipe(false);
    const WindowsHandle error = InheritableStandardError();
    std::vector<HANDLE> handles = {input.theirs.get(), output.theirs.get()};
    if (error) {
        handles.push_back(error.get());
    }
    InheritedHandles inherited(handles);

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
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr,
                        &startup.StartupInfo, &started)) {
        FailWithSystemError("cannot start " + ToUtf8(commandLine), GetLastError());
    }
    const WindowsHandle thread(started.hThread);
    ChildProcess child{MakeKillingJob(), WindowsHandle(started.hProcess), std::move(input.ours),
                       std::move(output.ours)};
    if (child.job && !AssignProcessToJobObject(child.job.get(), child.process.get())) {
        child.job.reset();
    }
    ResumeThread(thread.get());
    return child;
}

}  // namespace host
