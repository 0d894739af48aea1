#include "ChildProcess.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace {

// A pipe of which the child inherits one end.
void MakePipe(HANDLE& reading, HANDLE& writing, HANDLE& ours) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    if (CreatePipe(&reading, &writing, &inheritable, 0) == FALSE) {
        throw std::runtime_error("no pipe");
    }
    SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);
}

std::string ReadAll(HANDLE pipe) {
    std::string text;
    char buffer[4096];
    DWORD bytes = 0;
    while (ReadFile(pipe, buffer, sizeof(buffer), &bytes, nullptr) != FALSE && bytes != 0) {
        text.append(buffer, bytes);
    }
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

}  // namespace

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments) {
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring path = (std::filesystem::path(self).parent_path() / program).wstring();
    std::wstring command = L"\"" + path + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    MakePipe(startup.hStdInput, m_input, m_input);
    MakePipe(m_outputEnd, startup.hStdOutput, m_outputEnd);
    MakePipe(m_errorEnd, startup.hStdError, m_errorEnd);
    PROCESS_INFORMATION process{};
    const BOOL started =
        CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    CloseHandle(startup.hStdInput);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (started == FALSE) {
        throw std::runtime_error("cannot start " + std::filesystem::path(program).string());
    }
    CloseHandle(process.hThread);
    m_process = process.hProcess;
}

ChildProcess::~ChildProcess() {
    Finish();
    CloseHandle(m_outputEnd);
    CloseHandle(m_errorEnd);
    CloseHandle(m_process);
}

std::string ChildProcess::ReadLine() {
    std::string line;
    char character = 0;
    DWORD bytes = 0;
    while (ReadFile(m_outputEnd, &character, 1, &bytes, nullptr) != FALSE && bytes == 1 && character != '\n') {
        line += character;
    }
    return line.empty() || line.back() != '\r' ? line : line.substr(0, line.size() - 1);
}

int ChildProcess::Finish() {
    if (m_input != nullptr) {
        CloseHandle(m_input);
        m_input = nullptr;
        std::thread errors([this] { m_error = ReadAll(m_errorEnd); });
        m_output = ReadAll(m_outputEnd);
        errors.join();
    }
    constexpr DWORD kOneMinute = 60000;
    if (WaitForSingleObject(m_process, kOneMinute) != WAIT_OBJECT_0) {
        TerminateProcess(m_process, 99);
        return -1;
    }
    DWORD code = 0;
    GetExitCodeProcess(m_process, &code);
    return static_cast<int>(code);
}
