#include "Options.h"

#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <vector>

namespace sandbox {
namespace {

constexpr int kBadOptionsExitCode = 2;
constexpr int kHighestPort = 65535;

std::string ToUtf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string converted(static_cast<std::size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, converted.data(), size, nullptr, nullptr);
    converted.pop_back();  // the terminating zero
    return converted;
}

// The arguments of main have lost every character outside the ANSI code page; these have not.
std::vector<std::string> Utf8Arguments() {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> list(CommandLineToArgvW(GetCommandLineW(), &count),
                                                               &LocalFree);
    std::vector<std::string> arguments;
    for (int index = 1; list != nullptr && index < count; ++index) {
        arguments.push_back(ToUtf8(list.get()[index]));
    }
    return arguments;
}

void Describe(CLI::App& application, Options& options) {
    application.add_option("--http-port", options.httpPort, "Port for HTTP, 0 for any free one")
        ->check(CLI::Range(0, kHighestPort));
    application.add_option("--https-port", options.httpsPort, "Port for HTTPS, 0 for any free one")
        ->check(CLI::Range(0, kHighestPort));
    application.add_option("--ca-file", options.authorityFile,
                           "File to write the certificate of the authority to, as PEM");
    application.add_option("--tls-name", options.tlsName, "Host name or IP address in the server's certificate")
        ->capture_default_str();
    application.add_option("--tls-max", options.tlsMax, "Highest TLS version to offer")
        ->check(CLI::IsMember({"1.1", "1.2", "1.3"}))
        ->capture_default_str();
    application.add_flag("--end-with-input", options.endWithInput,
                         "End when standard input does: for a program that starts this one");
}

}  // namespace

CommandLine ReadCommandLine() {
    CommandLine commandLine;
    CLI::App application("Account platform on 127.0.0.1. Serves until Ctrl-C.", "sandbox-server");
    Describe(application, commandLine.options);
    auto list = Utf8Arguments();
    std::reverse(list.begin(), list.end());  // the parser takes them from the back
    try {
        application.parse(std::move(list));
    } catch (const CLI::CallForHelp&) {
        std::cout << application.help() << std::flush;
        commandLine.run = false;
    } catch (const CLI::ParseError& error) {
        std::cerr << "sandbox-server: " << error.what() << " (--help lists the options)" << std::endl;
        commandLine.run = false;
        commandLine.exitCode = kBadOptionsExitCode;
    }
    return commandLine;
}

}  // namespace sandbox
