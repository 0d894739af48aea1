#include "SuiteStandIns.h"

#include <EventAdminModule.h>
#include <HttpLib.h>
#include <Logger.h>
#include <ParamStore.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <new>

namespace {

std::string Utf8(const std::wstring& wide) { return std::filesystem::path(wide).u8string(); }

void Record(const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> hold(mutex);
    Recording().journal.push_back(line);
}

// What the real libraries' contracts say throws nothing: their own want of memory is no exception of the call.
template <typename Call>
void WithoutBadAlloc(const Call& call) {
    try {
        call();
    } catch (const std::bad_alloc&) {
        return;
    }
}

void Push(const std::string& setter, const std::wstring& value) {
    Record("store " + setter + " " + Utf8(value));
    Recording().duringPush();
}

// A call of a strategy's setter.
void Set(const std::string& setter, const std::wstring& value = {}) { Record("http " + setter + " " + Utf8(value)); }

}  // namespace

SuiteRecording& Recording() {
    static SuiteRecording recording;
    return recording;
}

std::vector<std::string> SuiteRecording::Lines(const std::string& word) const {
    std::vector<std::string> lines;
    for (const std::string& line : journal) {
        if (line.compare(0, word.size() + 1, word + " ") == 0) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> SuiteRecording::TakeOutcome() {
    std::vector<std::string> lines;
    for (std::string line : journal) {
        if (line.rfind("http", 0) == 0 || line.find("lambda") != std::string::npos) {
            continue;
        }
        const std::size_t id = line.find("traceId=");
        if (id != std::string::npos) {
            line.erase(id + 8, line.find('\n', id) - id - 8);
        }
        lines.push_back(line);
    }
    journal.clear();
    return lines;
}

// ---- Logger

void Logger::Output(int moduleType, int severity, int, const std::string& functionTag, const std::wstring& message,
                    bool toFile) {
    WithoutBadAlloc([&] {
        Record("log " + std::to_string(moduleType) + " " + std::to_string(severity) + " " + functionTag + " " +
               Utf8(message) + (toFile ? "" : " (not to the file)"));
    });
}

void Logger::OutputOperationLog(int basicEventType, int operationType, int actionType) {
    OutputOperationLog(basicEventType, operationType, actionType, {});
}

void Logger::OutputOperationLog(int basicEventType, int operationType, int actionType,
                                const std::map<std::wstring, std::wstring>& extraInformation) {
    WithoutBadAlloc([&] {
        std::string line = "event " + std::to_string(basicEventType) + " " + std::to_string(operationType) + " " +
                           std::to_string(actionType);
        for (const auto& [name, value] : extraInformation) {
            line += " " + Utf8(name) + "=" + Utf8(value);
        }
        Record(line);
    });
}

// ---- Event hub

struct EventAdminModule::State {};

EventAdminModule::EventAdminModule() = default;
EventAdminModule::~EventAdminModule() = default;

EventAdminModule* EventAdminModule::GetInstance() {
    static EventAdminModule hub;
    return &hub;
}
void EventAdminModule::SyncDriveKeyOk() {
    WithoutBadAlloc([] { Record("hub SyncDriveKeyOk"); });
}
void EventAdminModule::CloudPhotoKeyOk() {
    WithoutBadAlloc([] { Record("hub CloudPhotoKeyOk"); });
}

// ---- Parameter store

struct GlobalParamWrapper::State {};

GlobalParamWrapper::GlobalParamWrapper() = default;
GlobalParamWrapper::~GlobalParamWrapper() = default;

GlobalParamWrapper* GlobalParamWrapper::GetInstance() {
    static GlobalParamWrapper store;
    return &store;
}

std::wstring GlobalParamWrapper::GetPortalUrl() const { return L"https://portal.example.com"; }
std::wstring GlobalParamWrapper::GetGWUrl() const { return L"https://gateway.example.com"; }
std::wstring GlobalParamWrapper::GetSyncServerUrl() const { return L"https://sync.example.com"; }
std::wstring GlobalParamWrapper::GetUserInformationserviceUrl() const { return L"https://user.example.com"; }
std::wstring GlobalParamWrapper::GetBasicUrl() const { return L"https://basic.example.com"; }
st_UserInfo& GlobalParamWrapper::GetUserInfo() {
    static st_UserInfo record{};
    return record;
}
ConfigEntityManager* ConfigEntityManager::GetInstance() {
    static ConfigEntityManager items;
    return &items;
}
std::wstring ConfigEntityManager::GetConfigContentDatas(ConfigEntityEnum item) const {
    return item == ConfigEntityEnum::kLegacyRefreshToken ? Recording().legacyItem : L"";
}
std::wstring GlobalParamWrapper::GetAppDataLocalPath() const { return Recording().appDataFolder; }
HWND__* GlobalParamWrapper::GetMainWnd() const {
    Recording().onMainWindowAsked();
    return Recording().mainWindow;
}
void GlobalParamWrapper::SetMainWnd(HWND__* window) { Recording().mainWindow = window; }
std::wstring GlobalParamWrapper::GetSystemUUid() const { return L"00112233445566778899aabbccddeeff"; }
std::wstring GlobalParamWrapper::GetCountryCode() const { return L"TH"; }
std::wstring GlobalParamWrapper::GetZvClientMode() const { return L"1"; }
void GlobalParamWrapper::SetCurrentAt(const std::wstring& accessToken) { Push("SetCurrentAt", accessToken); }
void GlobalParamWrapper::SetCurrentRt(const std::wstring& refreshToken) { Push("SetCurrentRt", refreshToken); }
void GlobalParamWrapper::SetUserID(const std::wstring& userId) { Push("SetUserID", userId); }
void GlobalParamWrapper::SetAppAT(const std::wstring& accessToken) { Push("SetAppAT", accessToken); }
void GlobalParamWrapper::SetAtIsExpired(bool expired) { Push("SetAtIsExpired", expired ? L"true" : L"false"); }
void GlobalParamWrapper::SetStartSend(bool start) { Push("SetStartSend", start ? L"true" : L"false"); }

// ---- HTTP

struct BasicHttpLibStrategy::State {
    std::wstring url;
    HttpRequestMethod method = HttpRequestMethod::kGet;
    HeaderMap headers;
    std::wstring postData;
    std::wstring certPath;
    LogFunction log = [](const std::wstring&) {};
    LogFunction logError = log;
};

IHttpLibStrategy::~IHttpLibStrategy() = default;
BasicHttpLibStrategy::BasicHttpLibStrategy() : m_state(std::make_unique<State>()) {}
BasicHttpLibStrategy::~BasicHttpLibStrategy() = default;

void BasicHttpLibStrategy::SetUrl(const std::wstring& url) { Set("SetUrl", m_state->url = url); }
void BasicHttpLibStrategy::SetHttpRequestMethod(HttpRequestMethod method) {
    Set("SetHttpRequestMethod", std::to_wstring(static_cast<int>(m_state->method = method)));
}
void BasicHttpLibStrategy::SetHeaders(const HeaderMap& headers) {
    m_state->headers = headers;
    Set("SetHeaders", std::to_wstring(headers.size()));
}
void BasicHttpLibStrategy::SetHeaders(const std::wstring& userId, const std::wstring& applicationId,
                                      const std::wstring& accessToken) {
    m_state->headers = Recording().standardHeaders;
    Set("SetHeaders", userId + L" " + applicationId + L" " + accessToken);
}
const BasicHttpLibStrategy::HeaderMap& BasicHttpLibStrategy::GetHeaders() const {
    Set("GetHeaders");
    return m_state->headers;
}
void BasicHttpLibStrategy::SetPostData(const std::wstring& body) { Set("SetPostData", m_state->postData = body); }
void BasicHttpLibStrategy::SetCertPath(const std::wstring& path) { Set("SetCertPath", m_state->certPath = path); }
void BasicHttpLibStrategy::SetLogFunction(LogFunction function) {
    Set("SetLogFunction");
    m_state->log = std::move(function);
}
void BasicHttpLibStrategy::SetErrorLogFunction(LogFunction function) {
    Set("SetErrorLogFunction");
    m_state->logError = std::move(function);
}
const std::wstring& BasicHttpLibStrategy::Url() const { return m_state->url; }
HttpRequestMethod BasicHttpLibStrategy::Method() const { return m_state->method; }
const std::map<std::wstring, std::wstring>& BasicHttpLibStrategy::Headers() const { return m_state->headers; }
const std::wstring& BasicHttpLibStrategy::PostData() const { return m_state->postData; }
const std::wstring& BasicHttpLibStrategy::CertPath() const { return m_state->certPath; }
void BasicHttpLibStrategy::Log(const std::wstring& message) const { m_state->log(message); }
void BasicHttpLibStrategy::LogError(const std::wstring& message) const { m_state->logError(message); }

struct FileTransferHandler::State {
    WriteDataFunction write;
};

FileTransferHandler::FileTransferHandler() : m_state(std::make_unique<State>()) {}
FileTransferHandler::~FileTransferHandler() = default;
void FileTransferHandler::SetWriteDataFunc(WriteDataFunction function) { m_state->write = std::move(function); }
bool FileTransferHandler::WriteData(const char* data, std::size_t size, bool finalBlock) {
    return m_state->write(data, size, finalBlock);
}

namespace {

std::mutex g_exchangeMutex;  // guards the recording's exchange members, not across the hooks

ScriptedReply NextReply(const IHttpLibStrategy& strategy) {
    const std::lock_guard<std::mutex> hold(g_exchangeMutex);
    SuiteRecording& recording = Recording();
    const auto byUrl = recording.repliesByUrl.find(strategy.Url());
    if (byUrl != recording.repliesByUrl.end()) {
        return byUrl->second;
    }
    if (recording.replies.empty()) {
        return {kHttpConnectFailed, "", {}};
    }
    ScriptedReply reply = recording.replies.front();
    recording.replies.erase(recording.replies.begin());
    return reply;
}

ScriptedReply Exchange(const IHttpLibStrategy& strategy, const std::string& form) {
    Record("http Request " + form);
    {
        const std::lock_guard<std::mutex> hold(g_exchangeMutex);
        Recording().requestHeaders = strategy.Headers();
        Recording().postData = strategy.PostData();
        Recording().url = strategy.Url();
    }
    if (Recording().duringExchange) {
        Recording().duringExchange(strategy.Url());
    }
    strategy.Log(L"progress text");
    strategy.LogError(L"error text");
    return NextReply(strategy);
}

}  // namespace

CurlHttpLibContext::CurlHttpLibContext(IHttpLibStrategy* strategy) : m_strategy(strategy) {}
CurlHttpLibContext::~CurlHttpLibContext() = default;

int CurlHttpLibContext::Request(std::string& response, int timeoutSeconds) try {
    const ScriptedReply reply = Exchange(*m_strategy, std::to_string(timeoutSeconds));
    response = reply.body;
    return reply.code;
} catch (const std::bad_alloc&) {
    return kHttpInternalError;
}

int CurlHttpLibContext::Request(std::string& response, std::map<std::string, std::string>& replyHeaders) try {
    const ScriptedReply reply = Exchange(*m_strategy, "with reply headers");
    response = reply.body;
    replyHeaders = reply.headers;
    return reply.code;
} catch (const std::bad_alloc&) {
    return kHttpInternalError;
}

int CurlHttpLibContext::Request(std::string&, void* fileTransferHandler) try {
    const ScriptedReply reply = Exchange(*m_strategy, "download");
    if (reply.code / 100 == 2) {
        // In blocks that come to no round number.
        constexpr std::size_t kBlock = 99'991;
        for (std::size_t at = 0; at < reply.body.size(); at += kBlock) {
            static_cast<FileTransferHandler*>(fileTransferHandler)
                ->WriteData(reply.body.data() + at, std::min(kBlock, reply.body.size() - at), false);
        }
        static_cast<FileTransferHandler*>(fileTransferHandler)->WriteData(nullptr, 0, true);
    }
    return reply.code;
} catch (const std::bad_alloc&) {
    return kHttpInternalError;
}
