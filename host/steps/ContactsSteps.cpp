#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>
#include <UserAuthService.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include "platform/SandboxClient.h"
#include "steps/ContactsFile.h"
#include "steps/Steps.h"
#include "system/WindowsHandle.h"
#include "text/FieldText.h"
#include "text/JsonObject.h"
#include "text/ProgressLine.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr char kTitle[] = "contacts exported";
constexpr std::size_t kDemoCards = 500;
// Compressed, so that the bytes of the file are not the bytes of the reply.
constexpr char kDemoContacts[] = "{\"cards\":500,\"coding\":\"br\",\"chunked\":true}";

struct ContactsSource {
    std::wstring url;  // empty when there is none
    std::map<std::wstring, std::wstring> cookies = {};
};

// A client has URL and cookies from the portal's web login. A sandbox hands them out at its platform's URL.
ContactsSource SandboxSource(const std::string& platformUrl) {
    const std::optional<Json::Value> login = AskSandbox(platformUrl, "/sandbox/portal-login");
    const std::string path = login ? TextMember(*login, "path") : "";
    if (path.empty() || !(*login)["cookies"].isObject()) {
        return {};
    }
    ContactsSource source{ToWide(platformUrl + path)};
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

// What is wrong with a download; empty when it may take the wanted file's place.
std::string FaultOf(bool exported, const VcardFile& contacts, const PartFile& part) {
    if (!exported) {
        return SeeLog("the download failed, " + Bytes(contacts.read ? contacts.bytes : 0) + " came");
    }
    if (!contacts.read) {
        return "the download's file beside PATH cannot be written: is its folder writable?";
    }
    if (part.IsDiskFull()) {
        return "the disk is full, or nearly so: contacts may be missing";
    }
    return contacts.whole ? "" : "what came, " + Bytes(contacts.bytes) + ", does not end with a whole contact";
}

constexpr std::chrono::milliseconds kPause{100};

// The size comes from a handle: the folder's entry of an open file may be out of date.
std::uint64_t BytesOf(const std::filesystem::path& file) {
    const WindowsHandle handle =
        OpenFile(file, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    LARGE_INTEGER size = {};
    return handle && GetFileSizeEx(handle.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

// The size of the download that this thread makes next, 0 until its reply has announced it. Others may be under way.
class AnnouncedSize {
public:
    AnnouncedSize() {
        CurlHttpLibContext::SetDownloadObserver(
            [bytes = m_bytes, thread = std::this_thread::get_id()](std::uint64_t announced) {
                if (thread == std::this_thread::get_id()) {
                    *bytes = announced;
                }
            });
    }
    ~AnnouncedSize() { CurlHttpLibContext::SetDownloadObserver(nullptr); }
    AnnouncedSize(const AnnouncedSize&) = delete;
    AnnouncedSize& operator=(const AnnouncedSize&) = delete;

    std::uint64_t Bytes() const { return *m_bytes; }

private:
    // Shared with the observer, which may still be running when this is destroyed.
    const std::shared_ptr<std::atomic<std::uint64_t>> m_bytes = std::make_shared<std::atomic<std::uint64_t>>(0);
};

// Shows how far the file is on the current line of a terminal, until the end comes. Nobody else may write meanwhile.
// The line stays as it is then.
void WatchGrowth(Console& console, const std::filesystem::path& file, const AnnouncedSize& announced,
                 const std::future<void>& end) {
    const std::string running = kRunning;
    const std::size_t frame = running.size() + std::string(kRewriteLine).size();  // which Wine's console counts too
    const auto start = std::chrono::steady_clock::now();
    while (end.wait_for(kPause) == std::future_status::timeout) {
        const std::size_t width = console.Width();
        const std::string progress =
            ProgressLine(BytesOf(file), announced.Bytes(), std::chrono::steady_clock::now() - start,
                         width > frame ? width - frame : 0);
        console.Write(kRewriteLine + (running + progress));
    }
}

bool Download(SessionState& state, const ContactsSource& source, const std::filesystem::path& file) {
    const AnnouncedSize announced;
    std::future<void> watch;  // destroyed before that: waits for the thread
    std::promise<void> end;
    if (ShowsRunningStep(state)) {
        watch = std::async(std::launch::async, [&state, &file, &announced, ended = end.get_future()] {
            WatchGrowth(state.console, file, announced, ended);
        });
    }
    const bool exported = state.service->ExportContracts(source.url, file.wstring(), source.cookies);
    end.set_value();
    return exported;
}

StepResult Export(SessionState& state, const std::filesystem::path& file) {
    const ContactsSource source = SourceOf(state);
    if (source.url.empty()) {
        return {false, "no sandbox answers at --platform: give --url, and --cookie-file for the login of its portal"};
    }
    const PartFile part(file);
    const std::vector<std::pair<std::string, std::string>> path = {{"path", ToUtf8(file.wstring())}};
    if (part.Exists()) {
        return {false, "the file of an earlier try cannot be deleted", path};
    }
    const bool exported = Download(state, source, part.Path());
    const VcardFile contacts = ReadVcardFile(part.Path());
    if (const std::string fault = FaultOf(exported, contacts, part); !fault.empty()) {
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

StepResult ExportToFile(SessionState& state) {
    return Export(state, ToWide(state.call->argument));
}

StepResult ExportDemoContacts(SessionState& state) {
    if (!TellSandbox(state.sandbox->Address().http, "/sandbox/contacts", kDemoContacts)) {
        return {false, "the sandbox does not take the contacts"};
    }
    return Export(state, GlobalParamWrapper::GetInstance()->GetAppDataLocalPath() + L"\\contacts.vcf");
}

}  // namespace

std::vector<Step> ContactsSteps() {
    return {{"contacts", kTitle, ExportToFile}};
}

std::vector<Step> DemoContactsSteps() {
    return {{"contacts", kTitle, ExportDemoContacts}};
}

}  // namespace host
