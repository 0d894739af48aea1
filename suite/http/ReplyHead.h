#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "HeaderText.h"
#include "TransportError.h"

namespace suite {

// Reads the head of a reply line by line, interim replies (1xx) before it included, and judges how its body is framed.
// libcurl alone is too lenient for that: it takes a garbled status line for a 200 and the last of two lengths.
class ReplyHead {
public:
    // collectsFields: whether TakeFields is to have anything.
    explicit ReplyHead(bool collectsFields) : m_collectsFields(collectsFields) {}
    ReplyHead(const ReplyHead&) = delete;
    ReplyHead& operator=(const ReplyHead&) = delete;

    // One line with its end. False, with Failure() set, for a head that is refused.
    bool Accept(std::string_view line);
    const TransportFailure& Failure() const { return m_failure; }

    // True once the empty line behind the final reply's fields has come; what follows has a meaning only then.
    bool IsComplete() const { return m_isComplete; }

    int Status() const { return m_status; }
    bool IsSuccess() const { return m_status >= 200 && m_status < 300; }
    // Where a redirect points to, as the server wrote it; empty for any other reply.
    std::string RedirectTarget() const;

    // 204 and 304 end with their head, whatever it announces.
    bool HasBody() const { return m_status != 204 && m_status != 304; }
    bool IsChunked() const { return m_isChunked; }
    // Nothing: chunks or the end of the connection end the body.
    std::optional<std::uint64_t> Length() const { return m_length; }
    // The codings of the body, parted by ","; empty when it goes without.
    const std::string& Codings() const { return m_codings; }

    // Names as they came, in the letter case of their first line; values of one name joined with ", ".
    std::map<std::string, std::string> TakeFields();

private:
    using Fields = std::map<std::string, std::string, HeaderNameLess>;

    bool AcceptStatusLine(std::string_view line);
    bool AcceptField(std::string_view line);
    bool AcceptFramingField(std::string_view name, std::string_view value);
    bool AcceptLength(std::string_view value);
    bool Continue(std::string_view line);
    void Collect(std::string_view name, std::string_view value);
    bool End(std::string_view line);
    bool Refuse(int code, const char* cause);

    const bool m_collectsFields;
    std::size_t m_bytes = 0;
    std::size_t m_lines = 0;
    bool m_awaitsStatusLine = true;
    bool m_isComplete = false;
    int m_status = 0;
    std::string m_location;
    std::string m_codings;
    std::optional<std::uint64_t> m_length;
    bool m_isChunked = false;
    bool m_lastFrames = false;  // the last field says how the body is framed or coded
    Fields m_fields;
    Fields::iterator m_last = m_fields.end();
    TransportFailure m_failure;
};

}  // namespace suite
