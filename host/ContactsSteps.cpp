#include <ParamStore.h>
#include <UserAuthService.h>

#include "FieldText.h"
#include "GrowingFile.h"
#include "JsonObject.h"
#include "SandboxControl.h"
#include "Session.h"
#include "TextEncoding.h"
#include "VcardFile.h"

namespace host {
namespace {

constexpr char kTitle[] = "contacts exported";
constexpr std::size_t kDemoCards = 500;
// Compressed, so that what the file holds is not what came over the line.
constexpr char kDemoContacts[] = "{\"cards\":500,\"coding\":\"br\",\"chunked\":true}";

struct ContactsSource {
    std::wstring url;  // empty when there is none
    std::map<std::wstring, std::wstring> cookies;
};

// What a client has from the portal's web login: a sandbox hands it out at its platform's URL.
ContactsSource SandboxSource(const std::string& platformUrl) {
    const std::optional<Json::Value> login = AskSandbox(platformUrl, "/sandbox/portal-login");
    const std::string path = login ? TextMember(*login, "path") : "";
    if (path.empty() || !(*login)["cookies"].isObject()) {
        return {};
    }
    ContactsSource source{ToWide(platformUrl + path), {}};
    const Json::Value& cookies = (*login)["cookies"];
    for (const std::string& name : cookies.getMemberNames()) {
        source.cookies.emplace(ToWide(name), ToWide(TextMember(cookies, name.c_str())));
    }
    return source;
}

ContactsSource SourceOf(const SessionState& state) {
    const Options& options = state.options;
    return options.contactsUrl.empty() ? SandboxSource(state.platformUrl)
                                       : ContactsSource{ToWide(options.contactsUrl), options.cookies};
}

bool Download(SessionState& state, const ContactsSource& source, const std::filesystem::path& file) {
    const bool show = state.console.IsTerminal() && !state.options.json;
    const std::unique_ptr<GrowingFile> progress =
        show ? std::make_unique<GrowingFile>(state.console, std::string("  ...     ") + kTitle, file) : nullptr;
    return state.service->ExportContracts(source.url, file.wstring(), source.cookies);
}

StepResult Export(SessionState& state, const std::filesystem::path& file) {
    const ContactsSource source = SourceOf(state);
    if (source.url.empty()) {
        return {false, "no sandbox answers at --platform: give --url, and --cookie for the login of its portal", {}};
    }
    const bool exported = Download(state, source, file);
    const VcardFile contacts = ReadVcardFile(file);
    const std::string size = contacts.read ? Bytes(contacts.bytes) : "no file";
    if (!exported || !contacts.read) {
        return {false,
                exported ? "the file cannot be written" : "the download failed, " + size + " came",
                {{"path", ToUtf8(file.wstring())}}};
    }
    const bool expected = !state.sandbox || contacts.cards == kDemoCards;
    return {expected,
            std::to_string(contacts.cards) + (contacts.cards == 1 ? " contact, " : " contacts, ") + size,
            {{"path", ToUtf8(file.wstring())}}};
}

StepResult ExportDemoContacts(SessionState& state) {
    if (!TellSandbox(state.sandbox->Address().http, "/sandbox/contacts", kDemoContacts)) {
        return {false, "the sandbox does not take the contacts", {}};
    }
    return Export(state, GlobalParamWrapper::GetInstance()->GetAppDataLocalPath() + L"\\contacts.vcf");
}

}  // namespace

std::vector<Step> ContactsSteps(SessionState& state, const std::string& file) {
    return {{"contacts", kTitle, [&state, file] { return Export(state, ToWide(file)); }}};
}

std::vector<Step> DemoContactsSteps(SessionState& state) {
    return {{"contacts", kTitle, [&state] { return ExportDemoContacts(state); }}};
}

}  // namespace host
