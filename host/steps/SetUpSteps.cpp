#include <HttpLib.h>
#include <ParamStore.h>

#include <algorithm>

#include "platform/ParameterStoreSetup.h"
#include "platform/PlatformProbe.h"
#include "steps/Steps.h"
#include "system/HostError.h"
#include "system/ModuleFolder.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// Of a user whose name has Thai, Cyrillic and an emoji, as a profile folder is named after its user.
constexpr wchar_t kDemoUserFolder[] =
    L"\u0E2A\u0E21\u0E0A\u0E32\u0E22 \u041D\u0430\u0434\u0435\u0436\u0434\u0430 \U0001F98A";

// Instead of it where the system cannot make such a name: Wine cannot without a UTF-8 locale.
constexpr wchar_t kPlainUserFolder[] = L"user (no UTF-8 locale)";

bool IsDemo(const Options& options) {
    return options.commands.front().command == Command::kDemo;
}

// Whether it gets tokens, and so begins with a platform that answers.
bool SignsIn(const Options& options) {
    const auto signsIn = [](const CommandCall& call) {
        return call.command == Command::kDemo || call.command == Command::kSignIn || call.command == Command::kMigrate;
    };
    return std::any_of(options.commands.begin(), options.commands.end(), signsIn);
}

StepResult StartSandbox(SessionState& state) {
    state.sandbox = std::make_unique<SandboxProcess>(ProgramFolder() / "sandbox-server.exe",
                                                     state.folder.Path() / "sandbox-authority.pem");
    const SandboxAddress& address = state.sandbox->Address();
    return {true, address.http + " and " + address.https, {}};
}

StoreFolders DemoFolders(const SessionState& state) {
    std::filesystem::path folder = state.folder.Path() / kDemoUserFolder;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        folder = state.folder.Path() / kPlainUserFolder;
        std::filesystem::create_directories(folder);
    }
    return {state.folder.Path(), folder};
}

StepResult ConfigureParameterStore(SessionState& state) {
    const Options& options = state.options;
    if (!options.configuration.empty()) {
        LoadParameterStore(options.configuration);
    }
    const SandboxProcess* const sandbox = state.sandbox.get();
    const std::string sandboxUrl = !sandbox ? "" : options.https ? sandbox->Address().https : sandbox->Address().http;
    const std::string url = sandbox ? sandboxUrl : options.platformUrl;
    const StoreFolders folders = sandbox ? DemoFolders(state) : StoreFolders();
    if (!url.empty()) {
        PointParameterStoreTo(url, state.folder.Path(), folders);
    }
    const bool trustsSandbox = sandbox && options.https;
    CurlHttpLibContext::SetDefaultCertPath(
        (trustsSandbox ? sandbox->Address().certificateAuthority : options.certificateAuthority).wstring());
    const std::wstring portal = GlobalParamWrapper::GetInstance()->GetPortalUrl();
    state.platformUrl = ToUtf8(portal);
    const std::string files = sandbox ? ", files in " + ToUtf8(folders.user.filename().wstring()) : "";
    return {true, (portal.empty() ? "no portal" : "portal " + state.platformUrl) + files, {}};
}

StepResult ReachPlatform(SessionState& state) {
    if (state.platformUrl.empty()) {
        throw HostError(kExitUsage, "no platform given: name one with --platform or in the file of --config");
    }
    RequirePlatform(state.platformUrl);
    return {true, "", {}};
}

}  // namespace

std::vector<Step> SetUpSteps(SessionState& state) {
    const Options& options = state.options;
    std::vector<Step> steps;
    if (IsDemo(options)) {
        steps.push_back({"sandbox", "sandbox platform started", [&state] { return StartSandbox(state); }});
    }
    steps.push_back(
        {"parameter-store", "parameter store configured", [&state] { return ConfigureParameterStore(state); }});
    if (SignsIn(options)) {
        steps.push_back({"platform", "platform reachable", [&state] { return ReachPlatform(state); }});
    }
    return steps;
}

}  // namespace host
