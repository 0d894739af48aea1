#include "page/Masking.h"

#include <algorithm>
#include <iterator>

namespace sandbox {
namespace {

constexpr std::size_t kShortestSecret = 16;
constexpr std::string_view kSecretNames[] = {"token", "code", "key", "cookie", "ticket", "authorization"};

bool IsSecretName(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::any_of(std::begin(kSecretNames), std::end(kSecretNames),
                       [&](std::string_view part) { return lower.find(part) != std::string::npos; });
}

std::string Masked(std::string_view value) {
    return value.size() < kShortestSecret ? std::string(value)
                                          : "[hidden: " + std::to_string(value.size()) + " characters]";
}

// A line that begins with a blank continues the field before it, whatever that is.
std::string MaskedField(std::string_view line) {
    if (line.front() == ' ' || line.front() == '\t') {
        return Masked(line);
    }
    const auto colon = line.find(':');
    if (!IsSecretName(line.substr(0, colon))) {
        return std::string(line);
    }
    const auto start =
        colon == std::string_view::npos ? 0 : std::min(line.find_first_not_of(' ', colon + 1), line.size());
    return std::string(line.substr(0, start)) + Masked(line.substr(start));
}

// A request line or a form: "name=value", from the start or one of "?& " to the next of them.
std::string MaskedParameters(std::string_view line) {
    std::string masked;
    while (!line.empty()) {
        const auto end = std::min(line.find_first_of("?& ", 1), line.size());
        const auto part = line.substr(0, end);
        const auto equals = part.find('=');
        const bool secret = equals != std::string_view::npos && IsSecretName(part.substr(0, equals));
        masked +=
            secret ? std::string(part.substr(0, equals + 1)) + Masked(part.substr(equals + 1)) : std::string(part);
        line.remove_prefix(end);
    }
    return masked;
}

// The length of the text that begins with a quotation mark, both marks included; all that is left when it has no end.
std::size_t LiteralLength(std::string_view text) {
    for (std::size_t index = 1; index < text.size(); ++index) {
        if (text[index] == '\\') {
            ++index;
        } else if (text[index] == '"') {
            return index + 1;
        }
    }
    return text.size();
}

bool IsName(std::string_view rest) {
    const auto next = rest.find_first_not_of(" \t\r\n");
    return next != std::string_view::npos && rest[next] == ':';
}

// Where a scan of JSON stands: how deep, and at which depth the member stands whose texts are secret.
class SecretScope {
public:
    // A name with escapes may be any.
    void Name(std::string_view name) {
        if (!m_secretDepth && (IsSecretName(name) || name.find('\\') != std::string_view::npos)) {
            m_secretDepth = m_depth;
        }
    }
    void Punctuation(char character) {
        if (character == '{' || character == '[') {
            ++m_depth;
            return;
        }
        const bool closes = character == '}' || character == ']';
        m_depth -= closes ? 1 : 0;
        if ((closes && m_depth < m_secretDepth) || (character == ',' && m_depth == m_secretDepth)) {
            m_secretDepth = 0;
        }
    }
    bool IsSecret() const { return m_secretDepth > 0; }

private:
    int m_depth = 1;  // so that 0 can stand for none
    int m_secretDepth = 0;
};

}  // namespace

std::string MaskedHead(std::string_view head) {
    std::string masked;
    bool requestLine = true;
    while (!head.empty()) {
        // At line feeds alone: a carriage return within a field belongs to its value.
        const auto end = std::min(head.find('\n'), head.size());
        auto line = head.substr(0, end);
        line.remove_suffix(!line.empty() && line.back() == '\r' ? 1 : 0);
        head.remove_prefix(std::min(end + 1, head.size()));
        if (line.empty()) {
            continue;
        }
        masked += (requestLine ? MaskedParameters(line) : "\n" + MaskedField(line));
        requestLine = false;
    }
    return masked;
}

std::string MaskedBody(std::string_view body) {
    if (const auto first = body.find_first_not_of(" \t\r\n");
        first == std::string_view::npos || std::string_view("{[\"").find(body[first]) == std::string_view::npos) {
        return MaskedParameters(body);
    }
    std::string masked;
    SecretScope scope;
    while (!body.empty()) {
        const auto length = body.front() == '"' ? LiteralLength(body) : 1;
        const auto part = body.substr(0, length);
        body.remove_prefix(length);
        const auto text = part.substr(1, part.size() > 1 ? part.size() - 2 : 0);
        if (length == 1) {
            scope.Punctuation(part.front());
            masked += part;
        } else if (IsName(body)) {
            scope.Name(text);
            masked += part;
        } else {
            masked += scope.IsSecret() ? "\"" + Masked(text) + "\"" : std::string(part);
        }
    }
    return masked;
}

}  // namespace sandbox
