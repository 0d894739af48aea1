#include "CommandLine.h"

#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>

#include "ExitCode.h"
#include "TextEncoding.h"

namespace host {
namespace {

constexpr char kDescription[] =
    "Console host of the user-authentication service.\n"
    "\n"
    "Commands, run in the given order in one session (the account state lives in the process):\n";

constexpr char kFooter[] =
    "Examples:\n"
    "  userauth demo\n"
    "  userauth demo --https --json\n"
    "  userauth sign-in refresh whoami profile --platform http://127.0.0.1:8080\n"
    "  userauth sign-in --config client.json --certificate-authority ca.pem --log userauth.log\n"
    "\n"
    "Exit codes:\n"
    "  0  every step succeeded\n"
    "  1  a step failed, or no platform answers\n"
    "  2  the arguments or a configuration file are wrong";

struct LocalRelease {
    void operator()(wchar_t** memory) const noexcept { LocalFree(memory); }
};

// The texts of the arguments, before they are judged.
struct RawOptions {
    std::vector<std::string> commands;
    std::string platform;
    std::string sdkPlatform;
    std::string configuration;
    std::string certificateAuthority;
    std::string log;
};

[[noreturn]] void Refuse(const std::string& text) {
    throw HostError(kExitUsage, text);
}

std::string CheckedUrl(std::string url, const char* option) {
    while (!url.empty() && url.back() == '/') {
        url.pop_back();
    }
    const std::size_t scheme = url.find("://");
    const std::string name = url.substr(0, scheme);
    const std::string authority = scheme == std::string::npos ? "" : url.substr(scheme + 3);
    const bool valid = (name == "http" || name == "https") && !authority.empty() &&
                       authority.find_first_of("/?#@\\ \t\r\n") == std::string::npos;
    if (!url.empty() && !valid) {
        Refuse(std::string(option) + ": not a base URL like http://HOST:PORT: " + url);
    }
    return url;
}

std::filesystem::path CheckedFile(const std::string& file, const char* option) {
    std::filesystem::path path = ToWide(file);
    std::error_code error;
    if (!path.empty() && !std::filesystem::is_regular_file(path, error)) {
        Refuse(std::string(option) + ": no such file: " + file);
    }
    return path;
}

Command CheckedCommand(const std::string& name) {
    const std::optional<Command> command = CommandNamed(name);
    if (!command) {
        Refuse("unknown command \"" + name + "\": try " + CommandNames() + " or --help");
    }
    return *command;
}

void Describe(CLI::App& app, Options& options, RawOptions& raw) {
    app.footer(kFooter);
    app.set_version_flag("--version", "userauth " USERAUTH_VERSION);
    app.add_option("commands", raw.commands, "What to do, see above")->type_name("COMMAND");
    app.add_option(
           "--platform", raw.platform,
           "Base URL of the portal and of all other services (gateway: /gateway below it); the account SDK beside "
           "this program gets it too")
        ->type_name("URL");
    app.add_option("--sdk-platform", raw.sdkPlatform,
                   "Base URL for the account SDK, if another: the sandbox's SDK speaks http only")
        ->type_name("URL");
    app.add_option("--config", raw.configuration, "Configuration file (JSON) of the parameter store")
        ->type_name("FILE");
    app.add_option("--certificate-authority", raw.certificateAuthority,
                   "Trust the authorities in this PEM file instead of the system's")
        ->type_name("FILE");
    app.add_flag("--https", options.https, "demo: speak https with the sandbox, and trust the authority that it made");
    app.add_flag("--json", options.json, "For machines: one JSON object a line and step");
    app.add_option("--log", raw.log, "Write the log to this file, events to FILE.operations.jsonl")->type_name("FILE");
    app.add_flag("--verbose", options.verbose, "Show the log on standard error");
}

void Judge(const RawOptions& raw, Options& options) {
    if (raw.commands.empty()) {
        Refuse("no command given: try " + CommandNames() + " or --help");
    }
    std::transform(raw.commands.begin(), raw.commands.end(), std::back_inserter(options.commands), CheckedCommand);
    options.platformUrl = CheckedUrl(raw.platform, "--platform");
    options.sdkPlatformUrl = CheckedUrl(raw.sdkPlatform, "--sdk-platform");
    options.configuration = CheckedFile(raw.configuration, "--config");
    options.certificateAuthority = CheckedFile(raw.certificateAuthority, "--certificate-authority");
    options.log = ToWide(raw.log);

    const bool demo = std::count(options.commands.begin(), options.commands.end(), Command::kDemo) != 0;
    const bool platform = !options.platformUrl.empty() || !options.sdkPlatformUrl.empty();
    if (demo && (platform || !options.configuration.empty() || !options.certificateAuthority.empty())) {
        Refuse(
            "demo brings its own platform: leave out --platform, --sdk-platform, --config and --certificate-authority");
    }
    if (demo && options.commands.size() > 1) {
        Refuse("demo is a session of its own: give no other command with it");
    }
    if (!demo && options.https) {
        Refuse("--https belongs to demo: elsewhere the URL of --platform says it");
    }
}

}  // namespace

std::vector<std::string> ProcessArguments() {
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalRelease> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i) {
        arguments.push_back(ToUtf8(wide.get()[i]));
    }
    return arguments;
}

std::optional<int> ReadCommandLine(std::vector<std::string> arguments, Options& options, Console& console) {
    CLI::App app(kDescription + CommandHelp(), "userauth");
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
    Judge(raw, options);
    return std::nullopt;
}

}  // namespace host
