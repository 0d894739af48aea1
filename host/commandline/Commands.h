#pragma once

#include <optional>
#include <string>

namespace host {

enum class Command {
    kDemo,
    kSignIn,
    kWhoAmI,
    kProfile,
    kRegistration,
    kModules,
    kActivate,
    kReport,
    kDevices,
    kRefresh,
    kApplicationToken,
    kKeys,
    kMigrate,
    kContacts,
    kRoute,
    kStatus,
    kSignOut,
};

// A command and what was given with it.
struct CommandCall {
    Command command;
    std::string argument;  // UTF-8: FILE of contacts, URL of route
};

// What an earlier command of the same session must have left.
enum class Needs {
    kNothing,
    kSession,  // tokens
    kUserId,   // tokens and the user id
};

// The command of that name; nothing when there is none.
std::optional<Command> CommandNamed(const std::string& name);
std::string NameOf(Command command);
Needs NeedsOf(Command command);

// All names in one line, for error texts.
std::string CommandNames();
// The commands with their arguments, a line or two each, for the help.
std::string CommandHelp();

}  // namespace host
