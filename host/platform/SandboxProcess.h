#pragma once

#include <filesystem>
#include <string>

#include "system/WindowsHandle.h"

namespace host {

// Where a sandbox platform can be reached.
struct SandboxAddress {
    std::string http;
    std::string https;
};

// A started program and our ends of its pipes.
struct ChildProcess {
    WindowsHandle job;  // ends the program when closed; null where the system refuses jobs
    WindowsHandle process;
    WindowsHandle input;   // what it reads from its standard input
    WindowsHandle output;  // what it writes to its standard output
};

// A running sandbox-server.exe. It ends when its standard input is closed: with this object, or with this process.
class SandboxProcess {
public:
    // Starts the program on free ports and waits until it is ready, 20 s at most. It writes its authority to
    // certificateAuthority; its error texts go to this program's standard error. Throws HostError.
    SandboxProcess(const std::filesystem::path& program, const std::filesystem::path& certificateAuthority);
    ~SandboxProcess();
    SandboxProcess(const SandboxProcess&) = delete;
    SandboxProcess& operator=(const SandboxProcess&) = delete;

    const SandboxAddress& Address() const { return m_address; }

private:
    std::string ReadLine();

    ChildProcess m_child;
    SandboxAddress m_address;
};

}  // namespace host
