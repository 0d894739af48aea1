#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ChunkedBody.h"
#include "ContentDecoder.h"
#include "HttpLib.h"
#include "ObserverSlot.h"
#include "ReplyHead.h"
#include "TransferPace.h"
#include "TransportError.h"

namespace suite {

// Who is told the announced size of downloads.
ObserverSlot<std::uint64_t>& DownloadSlot();

// Receives the replies of one exchange and decides which of them are whole. The decoded body becomes the text or goes
// to a download's handler, both within their limits; the body of a redirect or of a download's error page goes nowhere.
class ReplySink {
public:
    // download: null collects the text. keepsHeaders: whether TakeHeaders is to have anything.
    ReplySink(FileTransferHandler* download, bool keepsHeaders) : m_download(download), m_keepsHeaders(keepsHeaders) {}
    ReplySink(const ReplySink&) = delete;
    ReplySink& operator=(const ReplySink&) = delete;

    bool IsDownload() const { return m_download != nullptr; }

    // Makes the handle deliver here; once before each hop.
    void Attach(CURL* handle, bool isHttps);

    // Judges what came once the transfer has ended; result is libcurl's word on it. True when the reply is whole, and a
    // download has been told of its last block then. False with Failure() set, or without when libcurl's word holds.
    bool Finish(CURLcode result);

    // Why the sink refused the reply; code 0 when it did not.
    const TransportFailure& Failure() const { return m_failure; }
    // False while nothing but a part of the head has come.
    bool HasHead() const { return m_head && m_head->IsComplete(); }
    // True when nothing but the end of the connection ends the body.
    bool EndsWithConnection() const;
    // Target of a redirect reply as the server wrote it; empty for any other reply.
    const std::string& RedirectTarget() const { return m_redirectTarget; }

    std::string TakeText() { return std::move(m_text); }
    std::map<std::string, std::string> TakeHeaders();

private:
    static std::size_t OnHeader(char* data, std::size_t one, std::size_t size, void* self);
    static std::size_t OnBody(char* data, std::size_t one, std::size_t size, void* self);

    bool AcceptHeaderLine(std::string_view line);
    bool BeginBody();
    bool AcceptBody(const char* data, std::size_t size);
    bool HidesExcess() const;
    bool AcceptChunks(const char* data, std::size_t size);
    bool Decode(const char* data, std::size_t size);
    bool Take(const char* data, std::size_t size);
    bool Deliver(const char* data, std::size_t size, bool finalBlock);
    std::uint64_t MaxBytes() const;
    bool RefuseSize();
    bool Refuse(int code, const char* cause);
    // Ends the transfer of a reply that is whole for our purpose; its connection is not kept.
    bool Stop();

    FileTransferHandler* const m_download;
    const bool m_keepsHeaders;
    TransportFailure m_failure;
    std::string m_text;

    // Of the hop.
    CURL* m_handle = nullptr;
    bool m_isHttps = false;
    TransferPace m_pace;
    std::optional<ReplyHead> m_head;
    std::string m_redirectTarget;
    bool m_isUnread = false;
    bool m_isStopped = false;
    ChunkedBody m_chunks;
    std::unique_ptr<ContentDecoder> m_decoder;
    std::uint64_t m_receivedBytes = 0;  // of the body, as sent
    std::uint64_t m_codedBytes = 0;     // of the body, out of its chunks
    std::uint64_t m_takenBytes = 0;     // of the body, decoded
};

}  // namespace suite
