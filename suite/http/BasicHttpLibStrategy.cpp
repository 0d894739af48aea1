#include "HttpLib.h"

IHttpLibStrategy::~IHttpLibStrategy() = default;

struct BasicHttpLibStrategy::State {
    std::wstring url;
    HttpRequestMethod method = HttpRequestMethod::kGet;
    HeaderMap headers;
    std::wstring postData;
    std::wstring certPath;
    LogFunction log;
    LogFunction logError;
};

BasicHttpLibStrategy::BasicHttpLibStrategy() : m_state(std::make_unique<State>()) {}
BasicHttpLibStrategy::~BasicHttpLibStrategy() = default;

void BasicHttpLibStrategy::SetUrl(const std::wstring& url) {
    m_state->url = url;
}
void BasicHttpLibStrategy::SetHttpRequestMethod(HttpRequestMethod method) {
    m_state->method = method;
}
void BasicHttpLibStrategy::SetHeaders(const HeaderMap& headers) {
    m_state->headers = headers;
}

void BasicHttpLibStrategy::SetHeaders(const std::wstring& userId, const std::wstring& applicationId,
                                      const std::wstring& accessToken) {
    m_state->headers = {{L"userId", userId},
                        {L"appId", applicationId},
                        {L"Authorization", L"Bearer " + accessToken},
                        {L"Content-Type", L"application/json"}};
}

const BasicHttpLibStrategy::HeaderMap& BasicHttpLibStrategy::GetHeaders() const {
    return m_state->headers;
}
void BasicHttpLibStrategy::SetPostData(const std::wstring& body) {
    m_state->postData = body;
}
void BasicHttpLibStrategy::SetCertPath(const std::wstring& path) {
    m_state->certPath = path;
}
void BasicHttpLibStrategy::SetLogFunction(LogFunction function) {
    m_state->log = std::move(function);
}
void BasicHttpLibStrategy::SetErrorLogFunction(LogFunction function) {
    m_state->logError = std::move(function);
}

const std::wstring& BasicHttpLibStrategy::Url() const {
    return m_state->url;
}
HttpRequestMethod BasicHttpLibStrategy::Method() const {
    return m_state->method;
}
const std::map<std::wstring, std::wstring>& BasicHttpLibStrategy::Headers() const {
    return m_state->headers;
}
const std::wstring& BasicHttpLibStrategy::PostData() const {
    return m_state->postData;
}
const std::wstring& BasicHttpLibStrategy::CertPath() const {
    return m_state->certPath;
}

void BasicHttpLibStrategy::Log(const std::wstring& message) const {
    if (m_state->log) {
        m_state->log(message);
    }
}

void BasicHttpLibStrategy::LogError(const std::wstring& message) const {
    if (m_state->logError) {
        m_state->logError(message);
    }
}

struct FileTransferHandler::State {
    WriteDataFunction write;
    std::uint64_t maxSize = std::uint64_t{2} * 1024 * 1024 * 1024;
};

FileTransferHandler::FileTransferHandler() : m_state(std::make_unique<State>()) {}
FileTransferHandler::~FileTransferHandler() = default;

void FileTransferHandler::SetWriteDataFunc(WriteDataFunction function) {
    m_state->write = std::move(function);
}

bool FileTransferHandler::WriteData(const char* data, std::size_t size, bool finalBlock) {
    return m_state->write && m_state->write(data, size, finalBlock);
}

void FileTransferHandler::SetMaxSize(std::uint64_t bytes) {
    m_state->maxSize = bytes;
}
std::uint64_t FileTransferHandler::MaxSize() const {
    return m_state->maxSize;
}
