#pragma once

#include <curl/curl.h>

#include <map>
#include <string>

#include "HttpLib.h"
#include "TransportError.h"

namespace suite {

// Receives the replies of one exchange: keeps the headers and either the text, within its limit, or hands the blocks to
// a download's handler. The body of a redirect goes nowhere, nor do the trailers of a chunked body.
class ReplySink {
public:
    // download: null collects the text.
    explicit ReplySink(FileTransferHandler* download) : m_download(download) {}
    ReplySink(const ReplySink&) = delete;
    ReplySink& operator=(const ReplySink&) = delete;

    // Makes the handle deliver here; once before each hop.
    void Attach(CURL* handle);

    // Tells a download that its last block has come. False, with Failure() set, when the handler refuses.
    bool Finish();

    // Why the sink ended a transfer; code 0 when it did not.
    const TransportFailure& Failure() const { return m_failure; }
    // Target of a redirect reply as the server wrote it; empty for any other reply.
    const std::string& RedirectTarget() const { return m_redirectTarget; }

    std::string TakeText() { return std::move(m_text); }
    std::map<std::string, std::string> TakeHeaders() { return std::move(m_headers); }

private:
    static std::size_t OnHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t OnBody(char* data, std::size_t one, std::size_t size, void* self);

    bool AcceptHeaderLine(const std::string& line);
    void StoreHeader(const std::string& line);
    void EndOfHeaders();
    bool AcceptBody(const char* data, std::size_t size);
    bool Deliver(const char* data, std::size_t size, bool finalBlock);
    bool Refuse(int code, const char* cause);

    FileTransferHandler* m_download;
    CURL* m_handle = nullptr;
    std::map<std::string, std::string> m_headers;
    std::string m_lastHeader;
    std::string m_location;
    std::string m_redirectTarget;
    std::string m_text;
    std::size_t m_headerBytes = 0;
    std::size_t m_redirectBytes = 0;
    bool m_headersComplete = false;
    bool m_isSuccess = false;
    TransportFailure m_failure;
};

}  // namespace suite
