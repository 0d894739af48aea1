#include <Logger.h>

#include <exception>

#include "RunSession.h"
#include "commandline/CommandLine.h"
#include "system/HostError.h"
#include "system/InvalidParameterHandler.h"
#include "text/Console.h"

namespace host {
namespace {

void OpenLog(const Options& options) {
    LoggerSettings settings;
    settings.file = options.log.wstring();
    settings.console = options.verbose;
    settings.consoleSeverity = kSeveritySummary;
    std::string error;
    if (!Logger::Configure(settings, error)) {
        throw HostError(kExitUsage, error);
    }
}

int Run(Console& console) {
    Options options;
    if (const std::optional<int> done = ReadCommandLine(ProcessArguments(), Commands(), options, console)) {
        return *done;
    }
    OpenLog(options);
    return RunSession(options, console);
}

int RunGuarded(Console& console) try { return Run(console); } catch (const HostError& error) {
    console.WriteError(std::string("userauth: ") + error.what() + "\n");
    return error.Code();
} catch (const std::exception& error) {
    console.WriteError(std::string("userauth: ") + error.what() + "\n");
    return kExitStepFailed;
}

}  // namespace
}  // namespace host

int main() {
    host::TolerateInvalidParameters();
    host::Console console;
    const int code = host::RunGuarded(console);
    Logger::Shutdown();  // before the libraries go: it ends the logger's thread
    return code;
}
