#include "ReplySink.h"

#include <openssl/ssl.h>

#include "CurlHandlePool.h"

namespace suite {

namespace {

constexpr std::uint64_t kMaxTextBytes = 16 * 1024 * 1024;
// Reading a short body to its end keeps the connection; a long one costs more than a new connection.
constexpr std::uint64_t kMaxUnreadBytes = 64 * 1024;

// What a compressed body may unfold to: any, up to the floor, so that a short reply of repeated text passes; beyond it
// so many times its own size.
constexpr std::uint64_t kUnfoldFloor = 1024 * 1024;
constexpr std::uint64_t kMaxUnfoldRatio = 200;

}  // namespace

// Never destroyed: a download may still look for it while the process ends.
ObserverSlot<std::uint64_t>& DownloadSlot() {
    static auto* const slot = new ObserverSlot<std::uint64_t>;
    return *slot;
}

void ReplySink::Attach(CURL* handle, bool isHttps) {
    m_handle = handle;
    m_isHttps = isHttps;
    m_pace = TransferPace();
    m_head.emplace(m_keepsHeaders);
    m_redirectTarget.clear();
    m_isUnread = false;
    m_isStopped = false;
    m_chunks = ChunkedBody();
    m_decoder.reset();
    m_receivedBytes = 0;
    m_codedBytes = 0;
    m_takenBytes = 0;
    SetCurlOption(handle, CURLOPT_HEADERFUNCTION, &ReplySink::OnHeader);
    SetCurlOption(handle, CURLOPT_HEADERDATA, this);
    SetCurlOption(handle, CURLOPT_WRITEFUNCTION, &ReplySink::OnBody);
    SetCurlOption(handle, CURLOPT_WRITEDATA, this);
    // libcurl's decoders take a cut body for a whole one, and its chunk reader a body without its last byte.
    SetCurlOption(handle, CURLOPT_HTTP_CONTENT_DECODING, 0L);
    SetCurlOption(handle, CURLOPT_HTTP_TRANSFER_DECODING, 0L);
}

bool ReplySink::Finish(CURLcode result) {
    if (m_failure.code != 0) {
        return false;
    }
    const bool isEnough = HasHead() && (m_isUnread || m_isStopped);
    if (result != CURLE_OK && !isEnough) {
        return false;
    }
    if (!HasHead()) {
        return Refuse(kHttpConnectionBroken, "the reply ends within its headers");
    }
    if (!m_isUnread && m_head->HasBody()) {
        if (m_head->IsChunked() && !m_chunks.HasEnded()) {
            return Refuse(kHttpConnectionBroken, "connection broken");
        }
        if (m_decoder && !m_decoder->HasEnded()) {
            return Refuse(kHttpBadEncoding, "the encoded reply is cut");
        }
    }
    return m_download == nullptr || !m_redirectTarget.empty() || Deliver("", 0, true);
}

bool ReplySink::EndsWithConnection() const {
    return HasHead() && m_head->HasBody() && !m_head->IsChunked() && !m_head->Length();
}

std::map<std::string, std::string> ReplySink::TakeHeaders() {
    return m_head ? m_head->TakeFields() : std::map<std::string, std::string>();
}

// Nothing may be thrown through libcurl's frames.
std::size_t ReplySink::OnHeader(char* data, std::size_t one, std::size_t size, void* self) {
    auto* const sink = static_cast<ReplySink*>(self);
    try {
        return sink->AcceptHeaderLine({data, one * size}) ? one * size : 0;
    } catch (...) {
        sink->m_failure.code = kHttpInternalError;
        return 0;
    }
}

std::size_t ReplySink::OnBody(char* data, std::size_t one, std::size_t size, void* self) {
    auto* const sink = static_cast<ReplySink*>(self);
    try {
        const bool goesOn = sink->AcceptBody(data, one * size) && (!sink->HidesExcess() || sink->Stop());
        return goesOn ? one * size : 0;
    } catch (...) {
        sink->m_failure.code = kHttpInternalError;
        return 0;
    }
}

bool ReplySink::AcceptHeaderLine(std::string_view line) {
    const bool hadHead = HasHead();
    if (!m_head->Accept(line)) {
        m_failure = m_head->Failure();
        return false;
    }
    return hadHead || !HasHead() || BeginBody();
}

bool ReplySink::BeginBody() {
    m_redirectTarget = m_head->RedirectTarget();
    m_isUnread = !m_redirectTarget.empty() || (m_download != nullptr && !m_head->IsSuccess());
    if (!m_head->HasBody()) {
        return true;
    }
    const std::optional<std::uint64_t> length = m_head->Length();
    if (m_isUnread) {
        const bool endsSoon = m_head->IsChunked() || (length && *length <= kMaxUnreadBytes);
        return endsSoon || Stop();
    }
    // libcurl does not tell an orderly end of a TLS connection from a cut one.
    if (m_isHttps && EndsWithConnection()) {
        return Refuse(kHttpConnectionBroken, "the reply over https has neither a length nor chunks");
    }
    DecoderChoice choice = ChooseDecoder(m_head->Codings());
    if (!choice.isKnown) {
        return Refuse(kHttpBadEncoding, "the content encoding is not known");
    }
    m_decoder = std::move(choice.decoder);
    if (m_decoder || !length) {
        return true;
    }
    if (*length > MaxBytes()) {
        return RefuseSize();
    }
    if (m_download != nullptr) {
        DownloadSlot().Tell(*length);
    }
    return true;
}

bool ReplySink::AcceptBody(const char* data, std::size_t size) {
    if (!HasHead()) {
        return Refuse(kHttpConnectionBroken, "the reply is not HTTP");
    }
    m_receivedBytes += size;
    if (m_download != nullptr && !m_pace.Accept(std::chrono::steady_clock::now(), size)) {
        return m_isUnread ? Stop() : Refuse(kHttpTimeout, "the download is too slow");
    }
    if (m_isUnread) {
        const auto drop = [](const char*, std::size_t) { return true; };
        const bool isClean = !m_head->IsChunked() || m_chunks.Accept(data, size, drop) == ChunkedBody::Result::kMore;
        return (isClean && m_receivedBytes <= kMaxUnreadBytes) || Stop();
    }
    return m_head->IsChunked() ? AcceptChunks(data, size) : Decode(data, size);
}

// libcurl reads up to the announced length. What else the server put into the same TLS record is decrypted by then: it
// would pass for the next reply of the connection, and no look at the socket shows it.
bool ReplySink::HidesExcess() const {
    curl_tlssessioninfo* tls = nullptr;
    return m_isHttps && m_head->Length() == m_receivedBytes &&
           curl_easy_getinfo(m_handle, CURLINFO_TLS_SSL_PTR, &tls) == CURLE_OK && tls->internals != nullptr &&
           SSL_pending(static_cast<const SSL*>(tls->internals)) > 0;
}

bool ReplySink::AcceptChunks(const char* data, std::size_t size) {
    switch (m_chunks.Accept(data, size, [this](const char* part, std::size_t count) { return Decode(part, count); })) {
        case ChunkedBody::Result::kMore:
            return true;
        case ChunkedBody::Result::kExcess:
            return Stop();
        case ChunkedBody::Result::kInvalid:
            return Refuse(kHttpConnectionBroken, "the reply's chunks are malformed");
        case ChunkedBody::Result::kTooLong:
            return Refuse(kHttpReplyTooLarge, "the reply's chunk extensions or trailers are too large");
        default:
            return false;
    }
}

bool ReplySink::Decode(const char* data, std::size_t size) {
    m_codedBytes += size;
    if (!m_decoder) {
        return Take(data, size);
    }
    // A coding can go on for ever and unfold to nothing.
    if (m_codedBytes > kUnfoldFloor && m_codedBytes - kUnfoldFloor > MaxBytes()) {
        return RefuseSize();
    }
    const auto take = [this](const char* block, std::size_t count) { return Take(block, count); };
    if (m_decoder->Decode(data, size, take)) {
        return true;
    }
    return m_failure.code == 0 ? Refuse(kHttpBadEncoding, "the content encoding cannot be undone") : false;
}

bool ReplySink::Take(const char* data, std::size_t size) {
    m_takenBytes += size;
    if (m_takenBytes > MaxBytes()) {
        return RefuseSize();
    }
    if (m_takenBytes > kUnfoldFloor && m_takenBytes / kMaxUnfoldRatio > m_codedBytes) {
        return Refuse(kHttpReplyTooLarge, "the encoded reply unfolds to more than 200 times its size");
    }
    if (m_download != nullptr) {
        return Deliver(data, size, false);
    }
    m_text.append(data, size);
    return true;
}

bool ReplySink::Deliver(const char* data, std::size_t size, bool finalBlock) {
    const auto start = std::chrono::steady_clock::now();
    try {
        const bool accepted = m_download->WriteData(data, size, finalBlock);
        m_pace.Excuse(std::chrono::steady_clock::now() - start);
        return accepted || Refuse(kHttpWriteRefused, "the download's write function refused a block");
    } catch (...) {
        return Refuse(kHttpWriteRefused, "the download's write function threw");
    }
}

std::uint64_t ReplySink::MaxBytes() const {
    return m_download != nullptr ? m_download->MaxSize() : kMaxTextBytes;
}

bool ReplySink::RefuseSize() {
    return Refuse(kHttpReplyTooLarge, m_download != nullptr ? "the download is larger than its handler allows"
                                                            : "the reply is larger than 16 MiB");
}

bool ReplySink::Refuse(int code, const char* cause) {
    m_failure = {code, cause};
    return false;
}

bool ReplySink::Stop() {
    m_isStopped = true;
    return false;
}

}  // namespace suite
