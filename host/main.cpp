#include <Logger.h>
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <exception>

#include "RunSession.h"
#include "commandline/CommandLine.h"
#include "system/HostError.h"
#include "system/Interruption.h"
#include "text/Console.h"

namespace host {
namespace {

// The C runtime goes on after an invalid parameter, so that a reply which does not fit its record fails the operation
// instead of ending the process.
void GoOn(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) {}

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

#if !defined(_MSC_VER)
// With MinGW every module has its own copy of the runtime's handler variable. The service looks this export up in the
// executable to find the handler that the host installed. With MSVC's shared runtime there is one variable for all.
extern "C" __declspec(dllexport) _invalid_parameter_handler UserAuthInvalidParameterHandler() {
    return _get_invalid_parameter_handler();
}
#endif

int main() {
    _set_invalid_parameter_handler(&host::GoOn);
    // Whatever is loaded from here on comes from this program's folder or the system's, never from the current one.
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    host::WatchForInterruption();
    host::Console console;
    int code = host::RunGuarded(console);
    if (host::Interrupted()) {
        console.WriteError("userauth: interrupted\n");
        code = host::kExitInterrupted;
    }
    Logger::Shutdown();  // before the libraries go: it ends the logger's thread
    return code;
}
