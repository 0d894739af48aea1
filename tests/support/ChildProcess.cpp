#include "ChildProcess.h"

#include <algorithm>
#include <stdexcept>
#include <thread>

#include "TextFile.h"

// Makes a pipe, hands out the end that the child inherits and returns the other.
ChildProcess::OwnedHandle ChildProcess::Pipe(OwnedHandle& childEnd, bool childReads) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (CreatePipe(&reading, &writing, &inheritable, 0) == FALSE) {
        throw std::runtime_error("no pipe");
    }
    childEnd.reset(childReads ? reading : writing);
    OwnedHandle ours(childReads ? writing : reading);
    SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0);
    return ours;
}

std::string ChildProcess::ReadAll(HANDLE pipe) {
    std::string text;
    char buffer[4096];
    DWORD bytes = 0;
    while (ReadFile(pipe, buffer, sizeof(buffer), &bytes, nullptr) != FALSE && bytes != 0) {
        text.append(buffer, bytes);
    }
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments) {
    const std::wstring path = (ProgramFolder() / program).wstring();
    std::wstring command = L"\"" + path + L"\" " + arguments;
    OwnedHandle input;
    OwnedHandle output;
    OwnedHandle error;
    m_input = Pipe(input, true);
    m_outputEnd = Pipe(output, false);
    m_errorEnd = Pipe(error, false);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = error.get();
    PROCESS_INFORMATION process{};
    if (CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process) ==
        FALSE) {
        throw std::runtime_error("cannot start " + std::filesystem::path(program).string() + ", error " +
                                 std::to_string(GetLastError()));
    }
    CloseHandle(process.hThread);
    m_process.reset(process.hProcess);
}

ChildProcess::~ChildProcess() { Finish(); }

std::string ChildProcess::ReadLine() {
    std::string line;
    char character = 0;
    DWORD bytes = 0;
    while (ReadFile(m_outputEnd.get(), &character, 1, &bytes, nullptr) != FALSE && bytes == 1 && character != '\n') {
        line += character;
    }
    return line.empty() || line.back() != '\r' ? line : line.substr(0, line.size() - 1);
}

int ChildProcess::Finish() {
    constexpr DWORD kOneMinute = 60000;
    bool ended = true;
    if (m_input != nullptr) {
        m_input.reset();
        std::thread output([this] { m_output = ReadAll(m_outputEnd.get()); });
        std::thread error([this] { m_error = ReadAll(m_errorEnd.get()); });
        ended = WaitForSingleObject(m_process.get(), kOneMinute) == WAIT_OBJECT_0;
        if (!ended) {
            TerminateProcess(m_process.get(), 99);
        }
        output.join();
        error.join();
    }
    DWORD code = 0;
    GetExitCodeProcess(m_process.get(), &code);
    return ended ? static_cast<int>(code) : -1;
}
