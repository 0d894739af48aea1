#pragma once

#include <windows.h>

#include <memory>
#include <string>

// A child process with its standard input, output and error connected by pipes. Output is read as UTF-8 with LF line
// ends.
class ChildProcess {
public:
    // program: file name of a program in that folder.
    ChildProcess(const std::wstring& program, const std::wstring& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // One line of standard output, without its end; empty at end of file.
    std::string ReadLine();

    // Ends the input, reads everything that is left and waits. Returns the exit code, or -1 when the process had to be
    // ended after a minute.
    int Finish();

    std::string m_output;  // what Finish read
    std::string m_error;

private:
    struct CloseHandleRelease {
        void operator()(void* handle) const { CloseHandle(handle); }
    };
    using OwnedHandle = std::unique_ptr<void, CloseHandleRelease>;

    static OwnedHandle Pipe(OwnedHandle& childEnd, bool childReads);
    static std::string ReadAll(HANDLE pipe);

    OwnedHandle m_process;
    OwnedHandle m_input;
    OwnedHandle m_outputEnd;
    OwnedHandle m_errorEnd;
};
