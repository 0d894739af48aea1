#include "MaskSecrets.h"

#include <algorithm>

namespace {

constexpr std::size_t kNone = std::string_view::npos;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsQuote(char c) {
    return c == '"' || c == '\'';
}
bool IsLineBreak(char c) {
    return c == '\r' || c == '\n';
}
bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsWordCharacter(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z');
}

// Position after the lower-case word when it stands at the position, else kNone.
std::size_t After(std::string_view text, std::size_t at, std::string_view word) {
    if (at > text.size() || text.size() - at < word.size()) {
        return kNone;
    }
    const auto same = [](char expected, char c) { return expected == Lower(c); };
    return std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at), same) ? at + word.size()
                                                                                                      : kNone;
}

template <typename Predicate>
std::size_t Skip(std::string_view text, std::size_t at, Predicate predicate) {
    while (at < text.size() && predicate(text[at])) {
        ++at;
    }
    return at;
}

// Position after the name of a secret, else kNone.
std::size_t AfterSecretName(std::string_view text, std::size_t at) {
    const char first = Lower(text[at]);
    if (first != 'a' && first != 'r') {
        return kNone;
    }
    for (const std::string_view kind : {std::string_view("access"), std::string_view("refresh")}) {
        const std::size_t next = After(text, at, kind);
        if (next != kNone) {
            const bool separated = next < text.size() && (text[next] == '_' || text[next] == '-');
            return After(text, next + (separated ? 1 : 0), "token");
        }
    }
    return After(text, at, "authorization");
}

struct Quote {
    std::size_t after;        // position after the quote; where there is none, the position asked about
    char character;           // 0: there is none
    std::size_t backslashes;  // in front of it: JSON text inside JSON text
};

Quote QuoteAt(std::string_view text, std::size_t at) {
    const std::size_t quote = Skip(text, at, [](char c) { return c == '\\'; });
    const bool found = quote < text.size() && IsQuote(text[quote]);
    return found ? Quote{quote + 1, text[quote], quote - at} : Quote{at, 0, 0};
}

// Where a quoted value ends: a quote with more backslashes than the opening one had is part of the value.
std::size_t EndOfQuoted(std::string_view text, const Quote& opening) {
    std::size_t backslashes = 0;
    for (std::size_t i = opening.after; i < text.size(); ++i) {
        if (text[i] == opening.character && backslashes <= opening.backslashes) {
            return i - backslashes;
        }
        backslashes = text[i] == '\\' ? backslashes + 1 : 0;
    }
    return text.size();
}

// Where a value without quotes ends inside running text: at white space, a quote, an escaped quote, or one of the
// stops.
std::size_t EndOfRun(std::string_view text, std::size_t at, std::string_view stops) {
    while (at < text.size() && static_cast<unsigned char>(text[at]) > ' ' && !IsQuote(text[at]) &&
           stops.find(text[at]) == kNone && !(text[at] == '\\' && at + 1 < text.size() && IsQuote(text[at + 1]))) {
        ++at;
    }
    return at;
}

// Position after "=" or ":", as they are or percent-encoded; colon tells which. kNone: neither.
std::size_t AfterSeparator(std::string_view text, std::size_t at, bool& colon) {
    for (const std::string_view separator : {"=", ":", "%3d", "%3a"}) {
        const std::size_t next = After(text, at, separator);
        if (next != kNone) {
            colon = separator == ":" || separator == "%3a";
            return next;
        }
    }
    return kNone;
}

// Position of the value after "Bearer" and at least one separating character, else kNone.
std::size_t AfterBearer(std::string_view text, std::size_t at) {
    const std::size_t word = After(text, at, "bearer");
    if (word == kNone) {
        return kNone;
    }
    std::size_t value = Skip(text, word, [](char c) { return IsBlank(c) || c == '+' || c == ':' || c == '='; });
    for (std::size_t next = After(text, value, "%20"); next != kNone; next = After(text, value, "%20")) {
        value = next;
    }
    return value == word ? kNone : QuoteAt(text, value).after;
}

struct Span {
    std::size_t begin;  // kNone: there is no secret
    std::size_t end;
};

constexpr Span kNoSecret = {kNone, kNone};

std::size_t EndOfUnquoted(std::string_view text, std::size_t value, bool wholeLine, bool jsonLiteral) {
    if (value < text.size() && (text[value] == '{' || text[value] == '[')) {
        return text.size();  // not a token's shape at all: nothing tells where it ends
    }
    if (jsonLiteral) {
        return EndOfRun(text, value, ",}]");
    }
    if (wholeLine) {
        return Skip(text, value, [](char c) { return !IsLineBreak(c); });
    }
    const std::size_t bearer = AfterBearer(text, value);
    return EndOfRun(text, bearer == kNone ? value : bearer, "&<>");
}

// The value of the secret whose name stands at the position.
Span NamedSecretAt(std::string_view text, std::size_t at) {
    const std::size_t afterName = AfterSecretName(text, at);
    if (afterName == kNone) {
        return kNoSecret;
    }
    const Quote nameQuote = QuoteAt(text, afterName);
    const bool json = nameQuote.character != 0;
    const auto isGap = [json](char c) { return IsBlank(c) || (json && IsLineBreak(c)); };
    bool colon = false;
    const std::size_t afterSeparator = AfterSeparator(text, Skip(text, nameQuote.after, isGap), colon);
    if (afterSeparator == kNone) {
        return kNoSecret;
    }
    const Quote opening = QuoteAt(text, Skip(text, afterSeparator, isGap));
    if (opening.character != 0) {
        return {opening.after, EndOfQuoted(text, opening)};
    }
    const bool authorization = After(text, at, "authorization") != kNone;
    return {opening.after, EndOfUnquoted(text, opening.after, authorization || colon, json)};
}

Span BearerValueAt(std::string_view text, std::size_t at) {
    const bool startsWord = Lower(text[at]) == 'b' && (at == 0 || !IsWordCharacter(text[at - 1]));
    const std::size_t value = startsWord ? AfterBearer(text, at) : kNone;
    return value == kNone ? kNoSecret : Span{value, EndOfRun(text, value, "&<>,;")};
}

}  // namespace

std::string MaskSecrets(std::string_view text) {
    std::string masked;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size();) {
        Span secret = NamedSecretAt(text, i);
        if (secret.begin == kNone) {
            secret = BearerValueAt(text, i);
        }
        if (secret.begin == kNone || secret.begin == secret.end) {
            ++i;
            continue;
        }
        masked.append(text, copied, secret.begin - copied).append("***");
        copied = i = secret.end;
    }
    return masked.append(text.substr(copied));
}

bool IsSecretName(std::string_view name) {
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (AfterSecretName(name, i) == name.size()) {
            return true;
        }
    }
    return false;
}
