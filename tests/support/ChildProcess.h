#pragma once

#include <windows.h>

#include <string>

// A child process with its standard input, output and error connected by pipes. Output is read as UTF-8 with LF line
// ends.
class ChildProcess {
public:
    // program: file name of a program in the test program's own folder.
    ChildProcess(const std::wstring& program, const std::wstring& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // One line of standard output, without its end; empty at end of file.
    std::string ReadLine();

    // Ends the input, reads everything that is left and waits. Returns the exit code, or -1 after a minute.
    int Finish();

    std::string m_output;  // what Finish read
    std::string m_error;

private:
    HANDLE m_process = nullptr;
    HANDLE m_input = nullptr;
    HANDLE m_outputEnd = nullptr;
    HANDLE m_errorEnd = nullptr;
};
