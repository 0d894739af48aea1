#include "commandline/Commands.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "commandline/ArgumentChecks.h"

namespace host {
namespace {

using Word = std::vector<std::string>::const_iterator;

constexpr std::size_t kNameWidth = 22;

std::string Usage(const CommandForm& form) {
    return form.name + (*form.arguments == '\0' ? "" : std::string(" ") + form.arguments);
}

[[noreturn]] void RefuseCommand(const std::string& fault, const CommandForms& forms) {
    std::string names;
    for (const CommandForm& form : forms) {
        names += std::string(form.name) + ", ";
    }
    Refuse(fault + ": try " + names + "or --help");
}

const CommandForm& FormOf(const std::string& name, const CommandForms& forms) {
    const auto form =
        std::find_if(forms.begin(), forms.end(), [&name](const CommandForm& known) { return known.name == name; });
    if (form == forms.end()) {
        RefuseCommand("unknown command \"" + name + "\"", forms);
    }
    return *form;
}

// Takes the words that belong to the command. Returns what was given for FILE or URL.
std::string TakeArgument(const CommandForm& form, Word& next, Word end) {
    std::string argument;
    std::istringstream parts(form.arguments);
    for (std::string part; parts >> part; ++next) {
        const bool value = part == "FILE" || part == "URL" || part == "SHELL";
        if (next == end || (!value && *next != part)) {
            Refuse(std::string(form.name) + ": give it as \"" + Usage(form) + "\"");
        }
        argument = value ? *next : argument;
        if (part == "FILE") {
            CheckNewFile(argument, form.name);
        } else if (part == "URL") {
            CheckUrl(argument, form.name);
        } else if (part == "SHELL" &&
                   std::find(std::begin(kShells), std::end(kShells), argument) == std::end(kShells)) {
            Refuse(std::string(form.name) + ": for bash or powershell, not " + argument);
        }
    }
    return argument;
}

}  // namespace

std::vector<CommandCall> ReadCommandWords(const std::vector<std::string>& words, const CommandForms& forms) {
    if (words.empty()) {
        RefuseCommand("no command given", forms);
    }
    std::vector<CommandCall> calls;
    for (Word next = words.begin(); next != words.end();) {
        const CommandForm& form = FormOf(*next++, forms);
        calls.push_back({form.name, TakeArgument(form, next, words.end())});
    }
    return calls;
}

std::string CommandHelp(const CommandForms& forms) {
    std::string help;
    for (const CommandForm& form : forms) {
        std::string usage = Usage(form);
        usage.resize(kNameWidth, ' ');
        std::istringstream lines(form.description);
        for (std::string line; std::getline(lines, line); usage.assign(kNameWidth, ' ')) {
            help += "  " + usage + line + "\n";
        }
    }
    return help;
}

std::string CommandExamples(const CommandForms& forms) {
    std::string examples;
    for (const CommandForm& form : forms) {
        examples += std::string("  userauth ") + form.example + "\n";
    }
    return examples;
}

}  // namespace host
