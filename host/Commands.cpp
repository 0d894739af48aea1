#include "Commands.h"

#include <algorithm>
#include <iterator>

namespace host {
namespace {

constexpr std::size_t kNameWidth = 19;

struct CommandRow {
    Command command;
    const char* name;
    bool needsSession;
    const char* description;
};

constexpr CommandRow kCommands[] = {
    {Command::kDemo, "demo", false, "start the sandbox platform from this program's folder and show a whole session"},
    {Command::kSignIn, "sign-in", false, "sign in through the account SDK and exchange the code for the tokens"},
    {Command::kApplicationToken, "application-token", true, "fetch the application's own access token"},
    {Command::kWhoAmI, "whoami", true, "look up the user id, at the gateway and at the sync server"},
    {Command::kRegistration, "registration", true, "look up what goes with the account's registration place"},
    {Command::kProfile, "profile", true, "fetch name, brand and portrait, and wait for the portrait message"},
    {Command::kRefresh, "refresh", true, "obtain a new access token with the refresh token"},
    {Command::kStatus, "status", false, "show what the account state holds; tokens by their length only"},
    {Command::kSignOut, "sign-out", false, "clear the account state"},
};

const CommandRow& RowOf(Command command) {
    return *std::find_if(std::begin(kCommands), std::end(kCommands),
                         [command](const CommandRow& row) { return row.command == command; });
}

}  // namespace

std::optional<Command> CommandNamed(const std::string& name) {
    const auto* const row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                         [&name](const CommandRow& known) { return known.name == name; });
    return row == std::end(kCommands) ? std::nullopt : std::optional<Command>(row->command);
}

std::string NameOf(Command command) {
    return RowOf(command).name;
}

bool NeedsSession(Command command) {
    return RowOf(command).needsSession;
}

std::string CommandNames() {
    std::string names;
    for (const CommandRow& row : kCommands) {
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    }
    return names;
}

std::string CommandHelp() {
    std::string help;
    for (const CommandRow& row : kCommands) {
        std::string name = row.name;
        name.resize(kNameWidth, ' ');
        help += "  " + name + row.description + "\n";
    }
    return help;
}

}  // namespace host
