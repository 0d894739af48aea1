#include "RequestCheck.h"

#include <algorithm>
#include <string_view>

#include "HeaderText.h"
#include "Utf8Text.h"

namespace suite {

namespace {

// RFC 9110, 5.6.2: the characters of a token.
bool IsTokenCharacter(char c) {
    static constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
    const char lower = static_cast<char>(c | 0x20);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || kMarks.find(c) != std::string_view::npos;
}

// Those that would end the header line or the text. Other control characters pass: a device's name comes from its
// firmware and may hold any.
bool IsForbiddenInValue(char c) {
    return c == '\r' || c == '\n' || c == '\0';
}

// Vertical tab and form feed are no blanks of HTTP, but libcurl takes a value of nothing else for an empty one.
constexpr std::string_view kOuterBlanks = " \t\v\f";

// Framing is the library's business: a length or an encoding that does not match the body would let the peer read one
// request as two, and an expectation would bring two final replies into one exchange.
bool IsFramingHeader(const std::string& name) {
    return SameHeaderName(name, "Content-Length") || SameHeaderName(name, "Transfer-Encoding") ||
           SameHeaderName(name, "Expect");
}

// Names the refused header only when its name is printable.
std::string CheckHeader(const std::string& name, const std::string& value) {
    if (name.empty() || !std::all_of(name.begin(), name.end(), IsTokenCharacter)) {
        return "a header name is empty or has a character that is not allowed in one";
    }
    if (std::any_of(value.begin(), value.end(), IsForbiddenInValue)) {
        return "the value of header " + name + " holds CR, LF or NUL";
    }
    return {};
}

}  // namespace

std::variant<CheckedRequest, std::string> CheckRequest(const IHttpLibStrategy& strategy, const GivenUrl& url) {
    const HttpRequestMethod method = strategy.Method();
    if (method != HttpRequestMethod::kGet && method != HttpRequestMethod::kPost) {
        return "the method is neither GET nor POST";
    }
    CheckedRequest request;
    request.post = method == HttpRequestMethod::kPost;

    if (!url.escaped) {
        return "the URL holds CR, LF or NUL";
    }
    if (!url.parts) {
        return "the URL is not an absolute http or https URL";
    }
    request.url = *url.escaped;
    request.parts = *url.parts;

    for (const auto& [wideName, wideValue] : strategy.Headers()) {
        std::string name = suite::Utf8FromWide(wideName);
        const std::string value = suite::Utf8FromWide(wideValue);
        std::string refusal = CheckHeader(name, value);
        if (!refusal.empty()) {
            return refusal;
        }
        const auto sameName = [&name](const auto& earlier) { return SameHeaderName(earlier.first, name); };
        if (std::any_of(request.headers.begin(), request.headers.end(), sameName)) {
            return "the header " + name + " is given twice";
        }
        if (!IsFramingHeader(name)) {
            request.headers.emplace_back(std::move(name), Trimmed(value, kOuterBlanks));
        }
    }
    if (request.post) {
        request.body = suite::Utf8FromWide(strategy.PostData());
    }
    return request;
}

}  // namespace suite
