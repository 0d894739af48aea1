#include "http/RequestHead.h"

#include <algorithm>
#include <utility>

namespace sandbox {
namespace {

char LowerAscii(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool SameHeaderName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char one, char other) { return LowerAscii(one) == LowerAscii(other); });
}

RequestHead::RequestHead(std::string text) : m_text(std::move(text)) {
    std::string_view rest = m_text;
    bool requestLine = true;
    while (!rest.empty()) {
        const auto lineEnd = std::min(rest.find('\n'), rest.size() - 1);
        const auto line = rest.substr(0, lineEnd + 1);
        rest.remove_prefix(lineEnd + 1);
        const auto colon = line.find(':');
        if (!std::exchange(requestLine, false) && colon != std::string_view::npos) {
            m_fields.push_back({std::string(line.substr(0, colon)), std::string(Trimmed(line.substr(colon + 1)))});
        }
    }
}

std::vector<std::string> RequestHead::Values(std::string_view name) const {
    std::vector<std::string> values;
    for (const auto& field : m_fields) {
        if (SameHeaderName(field.name, name)) {
            values.push_back(field.value);
        }
    }
    return values;
}

std::string RequestHead::OnlyValue(std::string_view name) const {
    auto values = Values(name);
    return values.size() == 1 ? std::move(values.front()) : std::string();
}

}  // namespace sandbox
