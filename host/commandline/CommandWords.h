#pragma once

#include <string>
#include <vector>

#include "commandline/Commands.h"

namespace host {

// The commands among the words of the command line, each with its argument. At least one; throws HostError with
// kExitUsage.
std::vector<CommandCall> ReadCommandWords(const std::vector<std::string>& words);

}  // namespace host
