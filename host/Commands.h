#pragma once

#include <optional>
#include <string>

namespace host {

enum class Command {
    kDemo,
    kSignIn,
    kApplicationToken,
    kWhoAmI,
    kRegistration,
    kProfile,
    kRefresh,
    kStatus,
    kSignOut,
};

// The command of that name; nothing when there is none.
std::optional<Command> CommandNamed(const std::string& name);
std::string NameOf(Command command);

// Whether it asks the platform with tokens that a sign-in of the same session has left.
bool NeedsSession(Command command);

// All names in one line, for error texts.
std::string CommandNames();
// One line a command, for the help.
std::string CommandHelp();

}  // namespace host
