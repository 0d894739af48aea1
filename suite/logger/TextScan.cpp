#include "TextScan.h"

#include <algorithm>

namespace suite {
namespace {

bool IsBackslash(char c) {
    return c == '\\';
}

// A NUL is half a character of UTF-16 that is read as bytes.
bool EndsRun(char c) {
    return c != '\0' && static_cast<unsigned char>(c) <= ' ';
}

}  // namespace

std::size_t After(std::string_view text, std::size_t at, std::string_view word) {
    if (at > text.size() || text.size() - at < word.size()) {
        return kNone;
    }
    const auto same = [](char expected, char c) { return expected == Lower(c); };
    return std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at), same) ? at + word.size()
                                                                                                      : kNone;
}

bool PartsValues(std::string_view text, std::size_t at) {
    constexpr std::string_view kMarks = ",}])&;<>";
    return at >= text.size() || EndsRun(text[at]) || kMarks.find(text[at]) != kNone;
}

Quote QuoteAt(std::string_view text, std::size_t at) {
    const std::size_t quote = Skip(text, at, IsBackslash);
    const bool found = quote < text.size() && IsQuote(text[quote]);
    return found ? Quote{quote + 1, text[quote], quote - at} : Quote{at, 0, 0};
}

// The opening quote tells how deep the text is wrapped: JSON inside JSON, n levels deep, writes 2^n - 1 backslashes
// in front of every quote that opens or closes a text. Each backslash at the end of the value adds 2^(n + 1) in front
// of the closing quote. Any other number of backslashes means that the quote belongs to the value.
std::size_t EndOfQuoted(std::string_view text, const Quote& opening) {
    const std::size_t own = opening.backslashes;
    std::size_t backslashes = 0;
    for (std::size_t i = opening.after; i < text.size(); ++i) {
        const bool closes = backslashes <= own || (backslashes - own) % (2 * (own + 1)) == 0;
        if (text[i] == opening.character && closes) {
            return PartsValues(text, i + 1) ? i - std::min(backslashes, own) : EndOfRun(text, i + 1, ",}])&;<>");
        }
        backslashes = text[i] == '\\' ? backslashes + 1 : 0;
    }
    return text.size();
}

std::size_t EndOfRun(std::string_view text, std::size_t at, std::string_view stops) {
    while (at < text.size() && !EndsRun(text[at]) && stops.find(text[at]) == kNone) {
        const std::size_t quote = Skip(text, at, IsBackslash);
        const bool quoted = quote < text.size() && IsQuote(text[quote]);
        if (quoted && PartsValues(text, quote + 1)) {
            return at;
        }
        at = quoted || quote == at ? quote + 1 : quote;
    }
    return at;
}

std::size_t EndOfHeaderValue(std::string_view text, std::size_t at) {
    for (;;) {
        at = Skip(text, at, [](char c) { return !IsLineBreak(c); });
        std::size_t next = at;
        next += next < text.size() && text[next] == '\r' ? 1 : 0;
        next += next < text.size() && text[next] == '\n' ? 1 : 0;
        if (next >= text.size() || !IsBlank(text[next])) {
            return at;
        }
        at = next;
    }
}

}  // namespace suite
