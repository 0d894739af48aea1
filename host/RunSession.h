#pragma once

#include "commandline/CommandLine.h"
#include "text/Console.h"

namespace host {

// The commands that a session can run.
CommandForms Commands();

// Runs the commands and shows their steps. Returns an ExitCode; throws HostError.
int RunSession(const Options& options, Console& console);

}  // namespace host
