#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "commandline/Commands.h"
#include "text/Console.h"

namespace host {

struct Options {
    // Whether the command is among them.
    bool Has(const char* command) const;

    std::vector<CommandCall> commands;  // at least one, in the order to run them

    std::string platformUrl;                     // a base URL of the parameter store; may be empty
    std::string sdkPlatformUrl;                  // likewise; empty: the same as platformUrl
    std::filesystem::path configuration;         // parameter-store configuration file; may be empty
    std::filesystem::path certificateAuthority;  // PEM file; may be empty
    std::filesystem::path log;                   // log file; may be empty
    std::string business;                        // what to report; empty: drive
    std::string contactsUrl;                     // empty: a sandbox at the platform's URL tells it
    std::map<std::wstring, std::wstring> cookies;
    bool https = false;
    bool interactive = false;
    bool json = false;
    bool verbose = false;
};

// The process's own arguments, UTF-8, without the program's name.
std::vector<std::string> ProcessArguments();

// Reads the arguments. commands: every command that exists. Returns an exit code when nothing is left to do, because
// help or the version was asked for. Throws HostError with kExitUsage.
std::optional<int> ReadCommandLine(std::vector<std::string> arguments, const CommandForms& commands, Options& options,
                                   Console& console);

}  // namespace host
