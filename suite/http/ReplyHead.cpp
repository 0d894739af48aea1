#include "ReplyHead.h"

#include <algorithm>
#include <charconv>

#include "RedirectRule.h"

namespace suite {

namespace {

constexpr std::size_t kMaxBytes = 256 * 1024;
constexpr std::size_t kMaxFields = 1000;
// As many as a 64-bit number surely holds.
constexpr std::size_t kMaxLengthDigits = 18;

constexpr std::string_view kBlanks = " \t\r\n";

constexpr char kTooLarge[] = "the reply's headers are too large";
constexpr char kUnclear[] = "the reply does not say clearly where it ends";

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

bool ReplyHead::Accept(std::string_view line) {
    m_bytes += line.size();
    if (m_bytes > kMaxBytes) {
        return Refuse(kHttpReplyTooLarge, kTooLarge);
    }
    if (m_isComplete) {
        return true;  // a trailer: what decides about the reply has been decided
    }
    if (m_awaitsStatusLine) {
        return AcceptStatusLine(line);
    }
    if (line.front() == '\r' || line.front() == '\n') {
        return End(line);
    }
    if (++m_lines > kMaxFields) {
        return Refuse(kHttpReplyTooLarge, kTooLarge);
    }
    return line.front() == ' ' || line.front() == '\t' ? Continue(line) : AcceptField(line);
}

std::string ReplyHead::RedirectTarget() const {
    return IsRedirectStatus(m_status) ? m_location : std::string();
}

std::map<std::string, std::string> ReplyHead::TakeFields() {
    return {std::make_move_iterator(m_fields.begin()), std::make_move_iterator(m_fields.end())};
}

// A new reply begins: nothing of an interim one stays.
bool ReplyHead::AcceptStatusLine(std::string_view line) {
    constexpr std::string_view kStart = "HTTP/1.";
    constexpr std::size_t kStatusAt = 9;
    constexpr std::size_t kEndAt = 12;
    const bool isHttp = line.size() > kEndAt && line.substr(0, kStart.size()) == kStart &&
                        (line[7] == '0' || line[7] == '1') && line[8] == ' ' &&
                        std::all_of(line.begin() + kStatusAt, line.begin() + kEndAt, IsDigit) &&
                        std::string_view(" \r\n").find(line[kEndAt]) != std::string_view::npos;
    if (!isHttp) {
        return Refuse(kHttpConnectionBroken, "the reply is not HTTP");
    }
    std::from_chars(line.data() + kStatusAt, line.data() + kEndAt, m_status);
    m_awaitsStatusLine = false;
    m_location.clear();
    m_codings.clear();
    m_length.reset();
    m_isChunked = false;
    m_lastFrames = false;
    m_fields.clear();
    m_last = m_fields.end();
    return true;
}

bool ReplyHead::AcceptField(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return Refuse(kHttpConnectionBroken, "the reply is not HTTP");
    }
    const std::string_view name = Trimmed(line.substr(0, colon), kBlanks);
    const std::string_view value = Trimmed(line.substr(colon + 1), kBlanks);
    m_lastFrames = SameHeaderName(name, "Content-Length") || SameHeaderName(name, "Transfer-Encoding") ||
                   SameHeaderName(name, "Content-Encoding");
    if (m_lastFrames) {
        // libcurl does not know a name with blanks before its colon, so the two would not frame alike.
        if (name.size() != colon) {
            return Refuse(kHttpConnectionBroken, kUnclear);
        }
        if (!AcceptFramingField(name, value)) {
            return false;
        }
    } else if (m_location.empty() && SameHeaderName(name, "Location")) {
        m_location = value;
    }
    if (m_collectsFields) {
        Collect(name, value);
    }
    return true;
}

// RFC 9112, 6.3: two ways to frame one body, or two lengths, are an attack or a fault. Of the transfer codings only
// "chunked" exists here.
bool ReplyHead::AcceptFramingField(std::string_view name, std::string_view value) {
    if (SameHeaderName(name, "Content-Encoding")) {
        m_codings.append(m_codings.empty() ? "" : ",").append(value);
        return true;
    }
    if (SameHeaderName(name, "Content-Length")) {
        return AcceptLength(value);
    }
    if (m_isChunked || m_length || !SameHeaderName(value, "chunked")) {
        return Refuse(kHttpConnectionBroken, kUnclear);
    }
    m_isChunked = true;
    return true;
}

bool ReplyHead::AcceptLength(std::string_view value) {
    if (value.empty() || !std::all_of(value.begin(), value.end(), IsDigit)) {
        return Refuse(kHttpConnectionBroken, kUnclear);
    }
    if (value.size() > kMaxLengthDigits) {
        return Refuse(kHttpReplyTooLarge, "the reply announces a length beyond every limit");
    }
    std::uint64_t length = 0;
    std::from_chars(value.data(), value.data() + value.size(), length);
    if (m_isChunked || (m_length && *m_length != length)) {
        return Refuse(kHttpConnectionBroken, kUnclear);
    }
    m_length = length;
    return true;
}

// A line that begins with a blank belongs to the field before it, or to nothing behind the status line.
bool ReplyHead::Continue(std::string_view line) {
    if (m_lastFrames) {
        return Refuse(kHttpConnectionBroken, kUnclear);
    }
    if (m_last != m_fields.end()) {
        m_last->second.append(" ").append(Trimmed(line, kBlanks));
    }
    return true;
}

void ReplyHead::Collect(std::string_view name, std::string_view value) {
    const auto [field, isNew] = m_fields.try_emplace(std::string(name), value);
    if (!isNew) {
        field->second.append(", ").append(value);
    }
    m_last = field;
}

bool ReplyHead::End(std::string_view line) {
    if (line != "\r\n" && line != "\n") {
        return Refuse(kHttpConnectionBroken, kUnclear);
    }
    if (m_status == 101) {
        return Refuse(kHttpConnectionBroken, "the server switches to a protocol that was not asked for");
    }
    m_isComplete = m_status >= 200;
    m_awaitsStatusLine = !m_isComplete;
    return true;
}

bool ReplyHead::Refuse(int code, const char* cause) {
    m_failure = {code, cause};
    return false;
}

}  // namespace suite
