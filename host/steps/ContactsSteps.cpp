#include <Logger.h>
#include <ParamStore.h>
#include <UserAuthService.h>
#include <windows.h>

#include <fstream>

#include "platform/SandboxClient.h"
#include "steps/GrowingFile.h"
#include "steps/Steps.h"
#include "steps/VcardFile.h"
#include "system/RenameOver.h"
#include "text/FieldText.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

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
    ContactsSource source = options.contactsUrl.empty() ? SandboxSource(state.platformUrl)
                                                        : ContactsSource{ToWide(options.contactsUrl), options.cookies};
    for (const auto& [name, value] : source.cookies) {
        Logger::SetSecret("cookie " + ToUtf8(name), value);
    }
    return source;
}

// Where the download goes: beside the wanted file, which is replaced at last. Deleted unless it was.
class PartFile {
public:
    // Deletes what an earlier try left.
    explicit PartFile(std::filesystem::path wanted)
        : m_path(std::move(wanted += L"." + std::to_wstring(GetCurrentProcessId()) + L".part")) {
        Delete();
    }
    ~PartFile() { Delete(); }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    bool Exists() const {
        std::error_code error;
        return std::filesystem::exists(m_path, error) || error;
    }
    // Not one that is read-only, which the system's rename takes under Wine.
    bool Replace(const std::filesystem::path& wanted) const {
        using std::filesystem::perms;
        std::error_code error;
        const std::filesystem::file_status before = std::filesystem::status(wanted, error);
        if (std::filesystem::exists(before) && (before.permissions() & perms::owner_write) == perms::none) {
            return false;
        }
        return RenameOver(m_path, wanted);
    }

private:
    void Delete() const {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }

    const std::filesystem::path m_path;
};

// The service does not look whether all could be written. Where one of its blocks did not fit, this one does not
// either.
bool IsDiskFull(const std::filesystem::path& file) {
    constexpr std::size_t kLargestBlock = 128 * 1024;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    std::ofstream stream(file, std::ios::binary | std::ios::app);
    stream << std::string(kLargestBlock, ' ');
    stream.close();
    std::filesystem::resize_file(file, size, error);
    return !stream || error;
}

// What is wrong with a download; empty when it may take the wanted file's place.
std::string FaultOf(bool exported, const VcardFile& contacts, const std::filesystem::path& part) {
    if (!exported) {
        return SeeLog("the download failed, " + Bytes(contacts.read ? contacts.bytes : 0) + " came");
    }
    if (!contacts.read) {
        return "the download's file beside PATH cannot be written: is its folder writable?";
    }
    if (IsDiskFull(part)) {
        return "the disk is full, or nearly so: contacts may be missing";
    }
    return contacts.whole ? "" : "what came, " + Bytes(contacts.bytes) + ", does not end with a whole contact";
}

bool Download(SessionState& state, const ContactsSource& source, const std::filesystem::path& file) {
    const std::unique_ptr<GrowingFile> progress =
        ShowsRunningStep(state.console, state.options)
            ? std::make_unique<GrowingFile>(state.console, std::string(kRunning) + kTitle, file)
            : nullptr;
    return state.service->ExportContracts(source.url, file.wstring(), source.cookies);
}

StepResult Export(SessionState& state, const std::filesystem::path& file) {
    const ContactsSource source = SourceOf(state);
    if (source.url.empty()) {
        return {false, "no sandbox answers at --platform: give --url, and --cookie for the login of its portal", {}};
    }
    const PartFile part(file);
    const std::vector<std::pair<std::string, std::string>> path = {{"path", ToUtf8(file.wstring())}};
    if (part.Exists()) {
        return {false, "the file of an earlier try cannot be deleted", path};
    }
    const bool exported = Download(state, source, part.Path());
    const VcardFile contacts = ReadVcardFile(part.Path());
    if (const std::string fault = FaultOf(exported, contacts, part.Path()); !fault.empty()) {
        return {false, fault + "; PATH is what it was", path};
    }
    if (!part.Replace(file)) {
        return {false, "PATH cannot be replaced: is it open elsewhere or read-only? It is what it was", path};
    }
    const bool expected = !state.sandbox || contacts.cards == kDemoCards;
    return {
        expected,
        std::to_string(contacts.cards) + (contacts.cards == 1 ? " contact, " : " contacts, ") + Bytes(contacts.bytes),
        path};
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
