#pragma once

#include <string_view>

namespace suite {

// Steps of a scan over text of unknown make: logs quote JSON, headers and URLs, each in any number of wrappings.

constexpr std::size_t kNone = std::string_view::npos;

inline char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
inline bool IsQuote(char c) {
    return c == '"' || c == '\'';
}
inline bool IsLineBreak(char c) {
    return c == '\r' || c == '\n';
}
inline bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
inline bool IsWordCharacter(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z');
}

template <typename Predicate>
std::size_t Skip(std::string_view text, std::size_t at, Predicate predicate) {
    while (at < text.size() && predicate(text[at])) {
        ++at;
    }
    return at;
}

// Position after the lower-case word when it stands at the position in any letter case, else kNone.
std::size_t After(std::string_view text, std::size_t at, std::string_view word);

// Whether a value may end in front of the position.
bool PartsValues(std::string_view text, std::size_t at);

struct Quote {
    std::size_t after;        // position after the quote; where there is none, the position asked about
    char character;           // 0: there is none
    std::size_t backslashes;  // in front of it: JSON text inside JSON text
};

Quote QuoteAt(std::string_view text, std::size_t at);

// Where a quoted value ends: a quote that is escaped against the opening one is part of the value, and so is what
// follows the closing quote without anything that separates values.
std::size_t EndOfQuoted(std::string_view text, const Quote& opening);

// Where a value without quotes ends inside running text: at white space, at one of the stops, or at a quote, escaped or
// not, that is followed by something that separates values.
std::size_t EndOfRun(std::string_view text, std::size_t at, std::string_view stops);

// Where a header's value ends: at the line's end, or that of the last line that continues it (RFC 9112, 5.2: such a
// line begins with a blank).
std::size_t EndOfHeaderValue(std::string_view text, std::size_t at);

}  // namespace suite
