#pragma once

#include <string>
#include <vector>

#include "commandline/Commands.h"

namespace host {

// A script that makes the shell complete this program's commands and options. shell: one of kShells.
std::string CompletionScript(const std::string& shell, const CommandForms& forms,
                             const std::vector<std::string>& options);

}  // namespace host
