#include <HttpLib.h>
#include <ParamStore.h>

#include <algorithm>

#include "ExitCode.h"
#include "ModuleFolder.h"
#include "ParameterStoreSetup.h"
#include "PlatformProbe.h"
#include "SdkConfiguration.h"
#include "Session.h"
#include "TextEncoding.h"

namespace host {
namespace {

bool IsDemo(const Options& options) {
    return options.commands.front() == Command::kDemo;
}

bool SignsIn(const Options& options) {
    const auto signsIn = [](Command command) { return command == Command::kDemo || command == Command::kSignIn; };
    return std::any_of(options.commands.begin(), options.commands.end(), signsIn);
}

StepResult StartSandbox(SessionState& state) {
    state.sandbox = std::make_unique<SandboxProcess>(ProgramFolder() / "sandbox-server.exe",
                                                     state.folder.Path() / "sandbox-authority.pem");
    const SandboxAddress& address = state.sandbox->Address();
    return {true, address.http + " and " + address.https, {}};
}

StepResult ConfigureParameterStore(SessionState& state) {
    const Options& options = state.options;
    if (!options.configuration.empty()) {
        LoadParameterStore(options.configuration);
    }
    const SandboxProcess* const sandbox = state.sandbox.get();
    const std::string sandboxUrl = !sandbox ? "" : options.https ? sandbox->Address().https : sandbox->Address().http;
    const std::string url = sandbox ? sandboxUrl : options.platformUrl;
    if (!url.empty()) {
        PointParameterStoreTo(url, state.folder.Path(), sandbox ? state.folder.Path() : std::filesystem::path());
    }
    const bool trustsSandbox = sandbox && options.https;
    CurlHttpLibContext::SetDefaultCertPath(
        (trustsSandbox ? sandbox->Address().certificateAuthority : options.certificateAuthority).wstring());
    const std::wstring portal = GlobalParamWrapper::GetInstance()->GetPortalUrl();
    state.platformUrl = ToUtf8(portal);
    return {true, portal.empty() ? "no portal" : "portal " + state.platformUrl, {}};
}

std::string SdkPlatformUrl(const SessionState& state) {
    if (state.sandbox) {
        return state.sandbox->Address().http;
    }
    return state.options.sdkPlatformUrl.empty() ? state.options.platformUrl : state.options.sdkPlatformUrl;
}

StepResult WriteSdkConfiguration(SessionState& state) {
    const std::filesystem::path file = ServiceFolder() / "ZMSCoreConfig.json";
    const std::string url = SdkPlatformUrl(state);
    ConfigureAccountSdk(file, url);
    return {true, "platform_url " + url, {}};
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
    if (IsDemo(options) || !options.platformUrl.empty() || !options.sdkPlatformUrl.empty()) {
        steps.push_back(
            {"sdk-configuration", "account SDK configured", [&state] { return WriteSdkConfiguration(state); }});
    }
    return steps;
}

}  // namespace host
