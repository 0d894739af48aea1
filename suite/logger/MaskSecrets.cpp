#include "MaskSecrets.h"

#include "TextScan.h"

namespace suite {
namespace {

constexpr std::string_view kAuthorization = "authorization";
constexpr std::string_view kToken = "token";

std::size_t PastJoint(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '_' || text[at] == '-') ? at + 1 : at;
}

// The word alone is a common one: it names a secret only between quotes, as a JSON member.
std::size_t AfterTokenMember(std::string_view text, std::size_t at) {
    const bool opened = at > 0 && IsQuote(text[at - 1]);
    const std::size_t next = opened ? After(text, at, kToken) : kNone;
    return next != kNone && QuoteAt(text, next).character != 0 ? next : kNone;
}

// Position after the name of a secret, else kNone.
std::size_t AfterSecretName(std::string_view text, std::size_t at) {
    const char first = Lower(text[at]);
    if (first == 't') {
        return AfterTokenMember(text, at);
    }
    if (first != 'a' && first != 'r') {
        return kNone;
    }
    for (const std::string_view kind : {std::string_view("access"), std::string_view("refresh")}) {
        const std::size_t next = After(text, at, kind);
        if (next != kNone) {
            return After(text, PastJoint(text, next), kToken);
        }
    }
    const std::size_t next = After(text, at, kAuthorization);
    const std::size_t code = next == kNone ? kNone : After(text, PastJoint(text, next), "code");
    return code == kNone ? next : code;
}

// Position after "=" or ":", as they are or encoded; colon tells which. kNone: neither.
std::size_t AfterSeparator(std::string_view text, std::size_t at, bool& colon) {
    for (const bool isColon : {false, true}) {
        const std::size_t plain = After(text, at, isColon ? ":" : "=");
        const std::size_t next = plain != kNone ? plain : AfterEncoded(text, at, isColon ? "3a" : "3d");
        if (next != kNone) {
            colon = isColon;
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
    const auto separates = [](char c) { return IsBlank(c) || c == '+' || c == ':' || c == '=' || c == '<'; };
    const std::size_t value = SkipEncodedMarks(text, Skip(text, word, separates));
    return value == word ? kNone : QuoteAt(text, value).after;
}

struct Span {
    std::size_t begin;  // kNone: there is no secret
    std::size_t end;
};

constexpr Span kNoSecret = {kNone, kNone};

std::size_t EndOfUnquoted(std::string_view text, std::size_t value, bool header, bool jsonLiteral) {
    if (value < text.size() && (text[value] == '{' || text[value] == '[')) {
        return text.size();  // not a token's shape at all: nothing tells where it ends
    }
    if (jsonLiteral) {
        return EndOfRun(text, value, ",}]");
    }
    if (header) {
        return EndOfHeaderValue(text, value);
    }
    const std::size_t bearer = AfterBearer(text, value);
    const std::size_t run = Skip(text, bearer == kNone ? value : bearer, [](char c) { return c == '<'; });
    return EndOfRun(text, run, "&<>");
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
    const std::size_t separator = Skip(text, SkipEncodedMarks(text, nameQuote.after), isGap);
    const std::size_t afterSeparator = AfterSeparator(text, separator, colon);
    if (afterSeparator == kNone) {
        return kNoSecret;
    }
    const Quote opening = QuoteAt(text, SkipEncodedMarks(text, Skip(text, afterSeparator, isGap)));
    if (opening.character != 0) {
        return {opening.after, EndOfQuoted(text, opening)};
    }
    const bool authorization = After(text, at, kAuthorization) == afterName;
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
    return After(name, 0, kToken) == name.size();
}

}  // namespace suite
