#include "commandline/Commands.h"

#include <algorithm>
#include <iterator>

namespace host {
namespace {

constexpr std::size_t kNameWidth = 22;

struct CommandRow {
    Command command;
    const char* name;
    const char* arguments;  // as the help shows them
    Needs needs;
    const char* description;  // its further lines are indented by the help
};

constexpr CommandRow kCommands[] = {
    {Command::kDemo, "demo", "", Needs::kNothing,
     "start the sandbox platform from this program's folder and show a whole session"},
    {Command::kSignIn, "sign-in", "", Needs::kNothing,
     "sign in through the account SDK and exchange the code for the tokens"},
    {Command::kWhoAmI, "whoami", "", Needs::kSession, "look up the user id, at the gateway and at the sync server"},
    {Command::kProfile, "profile", "", Needs::kSession,
     "fetch name, brand and portrait, and wait for the portrait message"},
    {Command::kRegistration, "registration", "", Needs::kSession,
     "look up what goes with the account's registration place"},
    {Command::kModules, "modules", "", Needs::kUserId,
     "fetch the system configuration: is the client available, which modules are on"},
    {Command::kActivate, "activate", "", Needs::kUserId, "have the platform refresh the account's activation"},
    {Command::kReport, "report", "", Needs::kUserId,
     "report that the data of a business is initialised (drive, or that of --business),\n"
     "and ask whether client logs are wanted"},
    {Command::kDevices, "devices", "", Needs::kSession, "list the devices that signed in to the account lately"},
    {Command::kRefresh, "refresh", "", Needs::kSession, "obtain a new access token with the refresh token"},
    {Command::kApplicationToken, "application-token", "", Needs::kSession, "fetch the application's own access token"},
    {Command::kKeys, "keys", "", Needs::kUserId,
     "retrieve the sync keys; shows their uuids and SHA-256 fingerprints, never a key"},
    {Command::kMigrate, "migrate", "", Needs::kNothing,
     "take over an earlier client's sign-in: item \"0\" of the \"legacyItems\" in the file of\n"
     "--config; without one, the session's refresh token protected as that client did.\n"
     "What is signed in before is signed out"},
    {Command::kContacts, "contacts", " export FILE", Needs::kNothing,
     "download the contacts as a vCard file, which replaces an existing one when all has\n"
     "come; from --url with the --cookie of its portal, or from a sandbox at --platform,\n"
     "which tells both"},
    {Command::kRoute, "route", " URL", Needs::kNothing, "ask the routing service at this URL; shows headers and text"},
    {Command::kStatus, "status", "", Needs::kNothing, "show what the account state holds; tokens by their length only"},
    {Command::kSignOut, "sign-out", "", Needs::kNothing, "clear the account state and the sync keys"},
};

const CommandRow& RowOf(Command command) {
    return *std::find_if(std::begin(kCommands), std::end(kCommands),
                         [command](const CommandRow& row) { return row.command == command; });
}

std::string HelpOf(const CommandRow& row) {
    std::string name = row.name + std::string(row.arguments);
    name.resize(kNameWidth, ' ');
    std::string lines = "  " + name + row.description + "\n";
    const std::string indent(kNameWidth + 2, ' ');
    for (std::size_t end = lines.find('\n'); end + 1 < lines.size(); end = lines.find('\n', end + 1)) {
        lines.insert(end + 1, indent);
    }
    return lines;
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

Needs NeedsOf(Command command) {
    return RowOf(command).needs;
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
        help += HelpOf(row);
    }
    return help;
}

}  // namespace host
