#include "commandline/CommandWords.h"

#include "commandline/ArgumentChecks.h"

namespace host {
namespace {

class WordReader {
public:
    explicit WordReader(const std::vector<std::string>& words) : m_next(words.begin()), m_end(words.end()) {}

    bool AtEnd() const { return m_next == m_end; }

    const std::string& Take(const char* missing) {
        if (AtEnd()) {
            Refuse(missing);
        }
        return *m_next++;
    }

private:
    std::vector<std::string>::const_iterator m_next;
    std::vector<std::string>::const_iterator m_end;
};

std::string ContactsFile(WordReader& words) {
    constexpr char kForm[] = "contacts: give \"export\" and the file to make: contacts export FILE";
    if (words.Take(kForm) != "export") {
        Refuse(kForm);
    }
    std::string file = words.Take(kForm);
    CheckNewFile(file, "contacts export");
    return file;
}

std::string ArgumentOf(Command command, WordReader& words) {
    switch (command) {
        case Command::kContacts:
            return ContactsFile(words);
        case Command::kRoute:
            return CheckedUrl(words.Take("route: give the URL to ask: route http://HOST/PATH"), "route");
        default:
            return "";
    }
}

Command CheckedCommand(const std::string& name) {
    const std::optional<Command> command = CommandNamed(name);
    if (!command) {
        Refuse("unknown command \"" + name + "\": try " + CommandNames() + " or --help");
    }
    return *command;
}

}  // namespace

std::vector<CommandCall> ReadCommandWords(const std::vector<std::string>& words) {
    if (words.empty()) {
        Refuse("no command given: try " + CommandNames() + " or --help");
    }
    std::vector<CommandCall> calls;
    for (WordReader reader(words); !reader.AtEnd();) {
        const Command command = CheckedCommand(reader.Take(""));
        calls.push_back({command, ArgumentOf(command, reader)});
    }
    return calls;
}

}  // namespace host
