#pragma once

#include <stdexcept>
#include <string>

namespace host {

// Exit codes of the program; documented in its help.
enum ExitCode : int {
    kExitOk = 0,
    kExitStepFailed = 1,  // the platform does not answer, or a step went wrong
    kExitUsage = 2,       // arguments or a configuration file are wrong
    kExitInterrupted = 3  // Ctrl-C, or the console is closed
};

// Ends the program with one line on standard error. The text is UTF-8, one line, without the program's name.
class HostError : public std::runtime_error {
public:
    HostError(ExitCode code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

}  // namespace host
