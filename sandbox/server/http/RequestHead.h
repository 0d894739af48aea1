#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sandbox {

// Without the white space around it.
std::string_view Trimmed(std::string_view text);

// Equality of header names: ASCII letters match without regard to case.
bool SameHeaderName(std::string_view left, std::string_view right);

struct HeaderField {
    std::string name;
    std::string value;  // without the white space around it
};

// The head of a request as it stood on the wire: request line and header fields, in order, empty values included.
class RequestHead {
public:
    RequestHead() = default;
    // text: from the request line to the empty line. Lines without a colon are left out of the fields.
    explicit RequestHead(std::string text);

    const std::string& Text() const { return m_text; }
    const std::vector<HeaderField>& Fields() const { return m_fields; }
    // The values of every field of that name, in order.
    std::vector<std::string> Values(std::string_view name) const;
    // The value of the one field of that name; empty when there is none or more than one.
    std::string OnlyValue(std::string_view name) const;

private:
    std::string m_text;
    std::vector<HeaderField> m_fields;
};

}  // namespace sandbox
