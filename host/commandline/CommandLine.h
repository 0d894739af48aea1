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
    std::vector<CommandCall> commands;  // at least one, in the order to run them

    std::string platformUrl;                     // "" or http(s)://HOST[:PORT], without trailing slash
    std::string sdkPlatformUrl;                  // likewise; "": the same as platformUrl
    std::filesystem::path configuration;         // parameter-store configuration file; may be empty
    std::filesystem::path certificateAuthority;  // PEM file; may be empty
    std::filesystem::path log;                   // log file; may be empty
    std::string business;                        // "": one of our own
    std::string contactsUrl;                     // "": a sandbox at the platform's URL tells it
    std::map<std::wstring, std::wstring> cookies;
    bool https = false;
    bool json = false;
    bool verbose = false;
};

// The process's own arguments, UTF-8, without the program's name.
std::vector<std::string> ProcessArguments();

// Reads the arguments. An exit code when there is nothing left to do, because help or the version was asked for. Throws
// HostError with kExitUsage.
std::optional<int> ReadCommandLine(std::vector<std::string> arguments, Options& options, Console& console);

}  // namespace host
