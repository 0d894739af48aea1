#include "ExaminerProcess.h"

#include <windows.h>

#include <cstdio>
#include <stdexcept>

#include "SuiteModules.h"

namespace conformance {

unsigned long RunAgain(const std::wstring& arguments) {
    constexpr DWORD kTenMinutes = 10 * 60 * 1000;
    const std::wstring program = (ProgramFolder() / L"suite-conformance.exe").wstring();
    std::wstring command = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == FALSE) {
        throw std::runtime_error("the examining process cannot be started: system error " +
                                 std::to_string(GetLastError()));
    }
    DWORD code = 1;
    if (WaitForSingleObject(process.hProcess, kTenMinutes) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &code);
    } else {
        TerminateProcess(process.hProcess, 1);
        std::printf("FAILS: does not end, stopped after ten minutes\n");
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

}  // namespace conformance
