// The child process of the end-to-end tests on this machine: the same class, with posix_spawn. A pipe's end is a HANDLE
// that holds its descriptor.

#include "ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Handles.h"
#include "TextFile.h"
#include "WideText.h"

namespace {

struct Descriptor : KernelObject {
    explicit Descriptor(int file) : native(file) {}
    ~Descriptor() override { close(native); }
    int native;
};

struct Process : KernelObject {
    explicit Process(pid_t id) : native(id) {}
    pid_t native;
};

int NativeOf(void* handle) {
    return ObjectOf<Descriptor>(handle)->native;
}

// The program's own reading of its command line: blanks part arguments, quotation marks keep them together.
std::vector<std::string> Arguments(const std::string& text) {
    std::vector<std::string> arguments;
    bool quoted = false;
    bool within = false;
    for (const char c : text) {
        if (c == '"') {
            quoted = !quoted;
        }
        if (c == ' ' && !quoted) {
            within = false;
            continue;
        }
        if (!within) {
            arguments.emplace_back();
            within = true;
        }
        if (c != '"') {
            arguments.back() += c;
        }
    }
    return arguments;
}

pid_t Spawn(const std::string& path, std::vector<std::string> arguments, const std::array<int, 3>& streams) {
    std::vector<char*> list = {const_cast<char*>(path.c_str())};
    for (std::string& argument : arguments) {
        list.push_back(argument.data());
    }
    list.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int stream = 0; stream < 3; ++stream) {
        posix_spawn_file_actions_adddup2(&actions, streams[static_cast<std::size_t>(stream)], stream);
    }
    pid_t id = -1;
    const int error = posix_spawn(&id, path.c_str(), &actions, nullptr, list.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? id : -1;
}

}  // namespace

ChildProcess::OwnedHandle ChildProcess::Pipe(OwnedHandle& childEnd, bool childReads) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    childEnd.reset(static_cast<KernelObject*>(new Descriptor(ends[childReads ? 0 : 1])));
    return OwnedHandle(static_cast<KernelObject*>(new Descriptor(ends[childReads ? 1 : 0])));
}

std::string ChildProcess::ReadAll(HANDLE pipe) {
    std::string text;
    char buffer[4096];
    for (ssize_t bytes = 0; (bytes = read(NativeOf(pipe), buffer, sizeof(buffer))) > 0;) {
        text.append(buffer, static_cast<std::size_t>(bytes));
    }
    return text;
}

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments) {
    OwnedHandle input;
    OwnedHandle output;
    OwnedHandle error;
    m_input = Pipe(input, true);
    m_outputEnd = Pipe(output, false);
    m_errorEnd = Pipe(error, false);
    const pid_t id = Spawn((ProgramFolder() / program).string(), Arguments(NarrowText(arguments.c_str())),
                           {NativeOf(input.get()), NativeOf(output.get()), NativeOf(error.get())});
    if (id < 0) {
        throw std::runtime_error("cannot start " + NarrowText(program.c_str()));
    }
    m_process.reset(static_cast<KernelObject*>(new Process(id)));
}

ChildProcess::~ChildProcess() {
    Finish();
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (char character = 0; read(NativeOf(m_outputEnd.get()), &character, 1) == 1 && character != '\n';) {
        line += character;
    }
    return line;
}

// A process that a sanitizer ended has its report in m_error, which is shown: nobody asks about a server's end.
int ChildProcess::Finish() {
    if (m_input == nullptr) {
        return -1;
    }
    m_input.reset();
    std::thread output([this] { m_output = ReadAll(m_outputEnd.get()); });
    std::thread error([this] { m_error = ReadAll(m_errorEnd.get()); });
    const pid_t id = ObjectOf<Process>(m_process.get())->native;
    int status = 0;
    pid_t ended = 0;
    for (int left = 6000; left > 0 && (ended = waitpid(id, &status, WNOHANG)) == 0; --left) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (ended == 0) {
        kill(id, SIGKILL);
        waitpid(id, &status, 0);
    }
    output.join();
    error.join();
    if (m_error.find("Sanitizer") != std::string::npos || m_error.find("runtime error") != std::string::npos) {
        ADD_FAILURE() << m_error;
    }
    return ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
