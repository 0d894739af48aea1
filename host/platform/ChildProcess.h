#pragma once

#include <string>

#include "system/WindowsHandle.h"

namespace host {

// A started program and our ends of its pipes.
struct ChildProcess {
    WindowsHandle job;  // ends the program when closed; null where the system refuses jobs
    WindowsHandle process;
    WindowsHandle input;   // what it reads from its standard input
    WindowsHandle output;  // what it writes to its standard output
};

// Starts a program with pipes as its standard input and output; it shares our standard error and inherits no other
// handle. Throws HostError with kExitStepFailed and the system's error code.
ChildProcess StartChildProcess(std::wstring commandLine);

}  // namespace host
