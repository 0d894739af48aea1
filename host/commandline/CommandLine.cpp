#include "commandline/CommandLine.h"

#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "commandline/ArgumentChecks.h"
#include "commandline/Completion.h"
#include "system/HostError.h"
#include "system/WindowsHandle.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr char kDescription[] =
    "Console host of the user-authentication service.\n"
    "\n"
    "Commands, run in the given order in one session (the account state lives in the process):\n";

constexpr char kExitCodes[] =
    "\n"
    "Exit codes:\n"
    "  0  every step succeeded\n"
    "  1  a step failed, or no platform answers\n"
    "  2  the arguments or a configuration file are wrong\n"
    "  3  interrupted by Ctrl-C; the program's temporary files are removed";

// Arguments that become something else in Options.
struct RawOptions {
    std::vector<std::string> commands;
    std::vector<std::string> cookies;
    std::string cookieFile;
    std::string configuration;
    std::string certificateAuthority;
    std::string log;
};

void Describe(CLI::App& app, Options& options, RawOptions& raw) {
    const auto addText = [&app](const char* name, const char* type, std::string& text, const char* description) {
        app.add_option(name, text, description)->type_name(type);
    };
    app.allow_windows_style_options(false);  // "/" starts a path
    app.set_version_flag("--version", "userauth " USERAUTH_VERSION);
    app.add_option("commands", raw.commands, "What to do, see above")->type_name("COMMAND [ARGUMENT]");
    addText("--platform", "URL", options.platformUrl,
            "Base URL of the portal and all other services (gateway: /gateway below it)");
    addText("--sdk-platform", "URL", options.sdkPlatformUrl,
            "Base URL for the account SDK, if not the portal's: the sandbox's SDK speaks http only");
    addText("--config", "FILE", raw.configuration, "Configuration file (JSON) of the parameter store");
    addText("--certificate-authority", "FILE", raw.certificateAuthority,
            "Trust the authorities in this PEM file instead of the system's");
    addText("--business", "NAME", options.business, "report: the business, if not drive");
    addText("--url", "URL", options.contactsUrl, "contacts export: where the portal has the contacts");
    // The option takes one text, so that the commands after it stay commands.
    app.add_option("--cookie", raw.cookies,
                   "contacts export: a cookie of the portal's login; once for each. Other users\n"
                   "can see it in the list of processes: rather use --cookie-file")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    addText("--cookie-file", "FILE", raw.cookieFile,
            "contacts export: the cookies, a line NAME=VALUE each; - reads them from standard input");
    app.add_flag("--https", options.https, "demo: speak https with the sandbox, and trust the authority that it made");
    app.add_flag("--interactive", options.interactive,
                 "With the sandbox's SDK: a person signs in on the sandbox's page, which opens\nin the browser");
    app.add_flag("--json", options.json, "For machines: one JSON object a line and step");
    addText("--log", "FILE", raw.log, "Write the log to this file, events to FILE.operations.jsonl");
    app.add_flag("--verbose", options.verbose, "Show the log on standard error");
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

void JudgeContacts(const RawOptions& raw, Options& options) {
    if (!options.contactsUrl.empty()) {
        CheckUrl(options.contactsUrl, "--url");
    }
    std::vector<std::string> cookies = ReadLines(raw.cookieFile, "--cookie-file");
    cookies.insert(cookies.end(), raw.cookies.begin(), raw.cookies.end());
    for (const std::string& cookie : cookies) {
        if (!options.cookies.insert(CheckedCookie(cookie, "cookies")).second) {
            Refuse("cookies: a name is given twice");
        }
    }
    const bool exports = options.Has("contacts");
    if (!exports && !(options.contactsUrl.empty() && options.cookies.empty())) {
        Refuse("--url, --cookie and --cookie-file belong to contacts export");
    }
    if (options.contactsUrl.empty() && !options.cookies.empty()) {
        Refuse("--cookie and --cookie-file need --url: a sandbox tells its cookies itself");
    }
    if (exports && options.contactsUrl.empty() && options.platformUrl.empty() && raw.configuration.empty()) {
        Refuse("contacts export: say from where, with --url, or with --platform of a sandbox");
    }
}

void JudgeDemo(const RawOptions& raw, const Options& options) {
    const bool demo = options.Has("demo");
    for (const char* const alone : {"demo", "doctor", "completion"}) {
        if (options.Has(alone) && options.commands.size() > 1) {
            Refuse(std::string(alone) + " stands alone: give no other command with it");
        }
    }
    if (demo &&
        !(options.platformUrl + options.sdkPlatformUrl + raw.configuration + raw.certificateAuthority).empty()) {
        Refuse(
            "demo brings its own platform: leave out --platform, --sdk-platform, --config and --certificate-authority");
    }
    if (!demo && options.https) {
        Refuse("--https belongs to demo: elsewhere the URL of --platform says it");
    }
}

void Judge(const RawOptions& raw, Options& options) {
    CheckBaseUrl(options.platformUrl, "--platform");
    CheckBaseUrl(options.sdkPlatformUrl, "--sdk-platform");
    options.configuration = CheckedFile(raw.configuration, "--config");
    options.certificateAuthority = CheckedFile(raw.certificateAuthority, "--certificate-authority");
    options.log = ToWide(raw.log);
    JudgeDemo(raw, options);
    if (!options.business.empty() && !options.Has("report")) {
        Refuse("--business belongs to report");
    }
    JudgeContacts(raw, options);
}

}  // namespace

std::vector<std::string> ProcessArguments() {
    int count = 0;
    const LocalMemory<wchar_t*> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i) {
        arguments.push_back(ToUtf8(wide.get()[i]));
    }
    return arguments;
}

bool Options::Has(const char* command) const {
    return std::any_of(commands.begin(), commands.end(),
                       [command](const CommandCall& call) { return call.name == command; });
}

std::optional<int> ReadCommandLine(std::vector<std::string> arguments, const CommandForms& commands, Options& options,
                                   Console& console) {
    CLI::App app(kDescription + CommandHelp(commands), "userauth");
    app.footer("Examples:\n" + CommandExamples(commands) + kExitCodes);
    RawOptions raw;
    Describe(app, options, raw);
    std::reverse(arguments.begin(), arguments.end());  // as the parser expects them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        console.Write(app.help());
        return kExitOk;
    } catch (const CLI::CallForVersion& version) {
        console.Write(std::string(version.what()) + "\n");
        return kExitOk;
    } catch (const CLI::ParseError& error) {
        Refuse(std::string(error.what()) + " (see userauth --help)");
    }
    options.commands = ReadCommandWords(raw.commands, commands);
    Judge(raw, options);
    if (options.Has("completion")) {
        console.Write(CompletionScript(options.commands.front().argument, commands, OptionNames(app)));
        return kExitOk;
    }
    return std::nullopt;
}

}  // namespace host
