#include "RequestCheck.h"

#include <algorithm>
#include <string_view>

#include "UrlText.h"
#include "Utf8Text.h"

namespace {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// RFC 9110, 5.6.2: the characters of a token.
bool IsTokenCharacter(char c) {
    static constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
    const char lower = LowerCase(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || kMarks.find(c) != std::string_view::npos;
}

bool IsControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

bool IsForbiddenInValue(char c) {
    return IsControl(c) && c != '\t';
}

std::string WithoutOuterBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Framing is the library's business: a length or an encoding that does not match the body would let the peer read one
// request as two.
bool IsFramingHeader(const std::string& name) {
    return SameHeaderName(name, "Content-Length") || SameHeaderName(name, "Transfer-Encoding");
}

// Names the refused header only when its name is printable.
std::string CheckHeader(const std::string& name, const std::string& value) {
    if (name.empty() || !std::all_of(name.begin(), name.end(), IsTokenCharacter)) {
        return "a header name is empty or has a character that is not allowed in one";
    }
    if (std::any_of(value.begin(), value.end(), IsForbiddenInValue)) {
        return "the value of header " + name + " has a control character";
    }
    return {};
}

}  // namespace

bool SameHeaderName(const std::string& left, const std::string& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

std::variant<CheckedRequest, std::string> CheckRequest(const IHttpLibStrategy& strategy) {
    const HttpRequestMethod method = strategy.Method();
    if (method != HttpRequestMethod::kGet && method != HttpRequestMethod::kPost) {
        return "the method is neither GET nor POST";
    }
    CheckedRequest request;
    request.post = method == HttpRequestMethod::kPost;

    const std::optional<std::string> url = EscapeUrl(ToUtf8(strategy.Url()));
    if (!url) {
        return "the URL has a control character";
    }
    if (!ParseUrl(*url)) {
        return "the URL is not an absolute http or https URL";
    }
    request.url = *url;

    for (const auto& [wideName, wideValue] : strategy.Headers()) {
        const std::string name = ToUtf8(wideName);
        const std::string value = ToUtf8(wideValue);
        std::string refusal = CheckHeader(name, value);
        if (!refusal.empty()) {
            return refusal;
        }
        if (!IsFramingHeader(name)) {
            request.headers.emplace_back(name, WithoutOuterBlanks(value));
        }
    }
    if (request.post) {
        request.body = ToUtf8(strategy.PostData());
    }
    return request;
}
