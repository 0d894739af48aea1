#include <HttpLib.h>
#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include "platform/ParameterStoreSetup.h"
#include "platform/PlatformCheck.h"
#include "steps/Steps.h"
#include "system/HostError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

// A profile folder is named after its user: this user's name has Thai, Cyrillic and an emoji.
constexpr wchar_t kDemoUserFolder[] =
    L"\u0E2A\u0E21\u0E0A\u0E32\u0E22 \u041D\u0430\u0434\u0435\u0436\u0434\u0430 \U0001F98A";

// Used where the system cannot make such a name, as under Wine without a UTF-8 locale.
constexpr wchar_t kPlainUserFolder[] = L"user (no UTF-8 locale)";

// PEM file of the authority that the sandbox makes for https.
std::filesystem::path SandboxAuthority(const SessionState& state) {
    return state.folder.Path() / "sandbox-authority.pem";
}

StepResult StartSandbox(SessionState& state) {
    state.sandbox = std::make_unique<SandboxProcess>(ProgramFolder() / "sandbox-server.exe", SandboxAuthority(state));
    const SandboxAddress& address = state.sandbox->Address();
    return {true, address.http + " and " + address.https};
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
        PointParameterStoreTo(url, folders);
    }
    const bool trustsSandbox = sandbox && options.https;
    CurlHttpLibContext::SetDefaultCertPath(
        (trustsSandbox ? SandboxAuthority(state) : options.certificateAuthority).wstring());
    const std::wstring portal = GlobalParamWrapper::GetInstance()->GetPortalUrl();
    state.platformUrl = ToUtf8(portal);
    const std::string files = sandbox ? ", files in " + ToUtf8(folders.user.filename().wstring()) : "";
    return {true, (portal.empty() ? "no portal" : "portal " + state.platformUrl) + files};
}

StepResult ReachPlatform(SessionState& state) {
    if (state.platformUrl.empty()) {
        throw HostError(kExitUsage, "no platform given: name one with --platform or in the file of --config");
    }
    RequirePlatform(state.platformUrl);
    return {true, ""};
}

StepResult CreateService(SessionState& state) {
    state.service = UserAuthService::GetInstance();
    constexpr wchar_t kSdk[] = L"ZVAccountSdk.dll";
    if (!GetModuleHandleW(kSdk)) {
        return {false, ToUtf8(kSdk) + " did not load: it belongs beside UserAuthService.dll"};
    }
    return {state.service->GetGPWPtr() == GlobalParamWrapper::GetInstance(), ToUtf8(kSdk)};
}

}  // namespace

std::vector<Step> SetUpSteps(bool withSandbox, bool needsPlatform) {
    std::vector<Step> steps;
    if (withSandbox) {
        steps.push_back({"sandbox", "sandbox platform started", StartSandbox});
    }
    steps.push_back({"parameter-store", "parameter store configured", ConfigureParameterStore});
    if (needsPlatform) {
        steps.push_back({"platform", "platform reachable", ReachPlatform});
    }
    steps.push_back({"service", "service created, account SDK loaded", CreateService});
    return steps;
}

}  // namespace host
