#include "ReplySink.h"

#include <algorithm>

#include "CurlHandlePool.h"
#include "RedirectRule.h"
#include "RequestCheck.h"

namespace suite {

namespace {

constexpr std::size_t kMaxTextBytes = 16 * 1024 * 1024;
constexpr std::size_t kMaxHeaderBytes = 256 * 1024;
// Reading a short body to its end keeps the connection; a long one costs more than a new connection.
constexpr std::size_t kMaxRedirectBodyBytes = 64 * 1024;

std::string Trimmed(const std::string& text) {
    constexpr const char* kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

void ReplySink::Attach(CURL* handle) {
    m_handle = handle;
    m_headers.clear();
    m_redirectTarget.clear();
    m_headerBytes = 0;
    m_redirectBytes = 0;
    m_headersComplete = false;
    SetCurlOption(handle, CURLOPT_HEADERFUNCTION, &ReplySink::OnHeader);
    SetCurlOption(handle, CURLOPT_HEADERDATA, this);
    SetCurlOption(handle, CURLOPT_WRITEFUNCTION, &ReplySink::OnBody);
    SetCurlOption(handle, CURLOPT_WRITEDATA, this);
}

bool ReplySink::Finish() {
    return m_download == nullptr || Deliver("", 0, true);
}

// Nothing may be thrown through libcurl's frames.
std::size_t ReplySink::OnHeader(char* data, std::size_t one, std::size_t size, void* self) {
    auto* const sink = static_cast<ReplySink*>(self);
    try {
        return sink->AcceptHeaderLine(std::string(data, one * size)) ? one * size : 0;
    } catch (...) {
        sink->m_failure.code = kHttpInternalError;
        return 0;
    }
}

std::size_t ReplySink::OnBody(char* data, std::size_t one, std::size_t size, void* self) {
    auto* const sink = static_cast<ReplySink*>(self);
    try {
        return sink->AcceptBody(data, one * size) ? one * size : 0;
    } catch (...) {
        sink->m_failure.code = kHttpInternalError;
        return 0;
    }
}

bool ReplySink::AcceptHeaderLine(const std::string& line) {
    m_headerBytes += line.size();
    if (m_headerBytes > kMaxHeaderBytes) {
        return Refuse(kHttpReplyTooLarge, "the reply's headers are too large");
    }
    if (m_headersComplete) {
        return true;  // a trailer: what decides about the reply has been decided
    }
    if (line.rfind("HTTP/", 0) == 0) {  // a new reply; interim ones (1xx) come before the final one
        m_text.clear();
        m_headers.clear();
        m_lastHeader.clear();
        m_location.clear();
    } else if (Trimmed(line).empty()) {
        EndOfHeaders();
    } else {
        StoreHeader(line);
    }
    return true;
}

void ReplySink::StoreHeader(const std::string& line) {
    const bool continuesLast = line[0] == ' ' || line[0] == '\t';
    if (continuesLast) {
        if (!m_lastHeader.empty()) {
            m_headers[m_lastHeader] += " " + Trimmed(line);
        }
        return;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) {
        return;
    }
    const std::string name = Trimmed(line.substr(0, colon));
    const std::string value = Trimmed(line.substr(colon + 1));
    if (m_location.empty() && SameHeaderName(name, "Location")) {
        m_location = value;
    }
    const auto known = std::find_if(m_headers.begin(), m_headers.end(),
                                    [&name](const auto& header) { return SameHeaderName(header.first, name); });
    if (known != m_headers.end()) {
        known->second += ", " + value;
        m_lastHeader = known->first;
    } else {
        m_headers[name] = value;
        m_lastHeader = name;
    }
}

void ReplySink::EndOfHeaders() {
    long status = 0;
    curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &status);
    m_headersComplete = status >= 200;
    m_isSuccess = status >= 200 && status < 300;
    if (IsRedirectStatus(status)) {
        m_redirectTarget = m_location;
    }
}

bool ReplySink::AcceptBody(const char* data, std::size_t size) {
    if (!m_redirectTarget.empty()) {
        m_redirectBytes += size;
        return m_redirectBytes <= kMaxRedirectBodyBytes;
    }
    if (m_download != nullptr) {
        return !m_isSuccess || Deliver(data, size, false);  // an error page is not the file that was asked for
    }
    if (size > kMaxTextBytes - m_text.size()) {
        return Refuse(kHttpReplyTooLarge, "the reply is larger than 16 MiB");
    }
    m_text.append(data, size);
    return true;
}

bool ReplySink::Deliver(const char* data, std::size_t size, bool finalBlock) {
    try {
        return m_download->WriteData(data, size, finalBlock) ||
               Refuse(kHttpWriteRefused, "the download's write function refused a block");
    } catch (...) {
        return Refuse(kHttpWriteRefused, "the download's write function threw");
    }
}

bool ReplySink::Refuse(int code, const char* cause) {
    m_failure = {code, cause};
    return false;
}

}  // namespace suite
