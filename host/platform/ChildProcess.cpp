#include "platform/ChildProcess.h"

#include <cstddef>
#include <utility>
#include <vector>

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

}  // namespace host
