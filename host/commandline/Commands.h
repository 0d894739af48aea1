#pragma once

#include <string>
#include <vector>

namespace host {

// A command as the command line knows it.
struct CommandForm {
    const char* name;
    // The words to give with it, as the help shows them. FILE is a file to make or replace, URL an http or https URL,
    // SHELL one of kShells; any other word is given as it stands.
    const char* arguments;
    const char* description;  // its further lines are indented by the help
    const char* example;      // what stands behind the program's name
};
using CommandForms = std::vector<CommandForm>;

constexpr const char* kShells[] = {"bash", "powershell"};

// A command and what was given with it.
struct CommandCall {
    std::string name;
    std::string argument;  // its FILE, URL or SHELL, UTF-8
};

// The commands among the words of the command line, each with its argument. At least one; throws HostError with
// kExitUsage.
std::vector<CommandCall> ReadCommandWords(const std::vector<std::string>& words, const CommandForms& forms);

// The commands with their arguments, a line or two each, for the help.
std::string CommandHelp(const CommandForms& forms);

// A line for each command's example, with its indent.
std::string CommandExamples(const CommandForms& forms);

}  // namespace host
