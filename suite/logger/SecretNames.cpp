#include "SecretNames.h"

#include <algorithm>

namespace suite {
namespace {

// How far a value may stand from its name when other members or attributes stand between them.
constexpr std::size_t kLookAhead = 200;
// The longest text in quotes that can be a member's name instead of a value.
constexpr std::size_t kLongestMemberName = 64;

struct Name {
    std::size_t after = kNone;
    bool header = false;
    bool mayBeStatus = false;
};

bool IsNameCharacter(char c) {
    return IsWordCharacter(c) || c == '-';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsGap(char c) {
    return IsBlank(c) || IsLineBreak(c);
}

bool Has(std::string_view text, std::size_t at, char c) {
    return at < text.size() && text[at] == c;
}

std::size_t PastJoint(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '_' || text[at] == '-') ? at + 1 : at;
}

Name AuthorizationAt(std::string_view text, std::size_t at) {
    const std::size_t shortForm = After(text, at, "auth");
    if (shortForm == kNone) {
        return {};
    }
    const std::size_t header = After(text, at, "authorization");
    const std::size_t code = After(text, PastJoint(text, header == kNone ? shortForm : header), "code");
    return code == kNone ? Name{header, true, false} : Name{code, false, false};
}

Name SecretNameAt(std::string_view text, std::size_t at) {
    switch (Lower(text[at])) {
        case 't':
            return {After(text, at, "token"), false, false};
        case 'a':
            return AuthorizationAt(text, at);
        case 'c': {
            const std::size_t cookie = After(text, at, "cookie");
            const bool startsWord = at == 0 || !IsNameCharacter(text[at - 1]);
            const std::size_t code = startsWord ? After(text, at, "code") : kNone;
            return cookie == kNone ? Name{code, false, true} : Name{cookie, true, false};
        }
        default:
            return {};
    }
}

// Past what closes a name: quotes, an index ("[0]"), the end of one ("filter[access_token]").
std::size_t PastNameEnd(std::string_view text, std::size_t at, bool& quoted) {
    for (;; ++at) {
        if (at < text.size() && IsQuote(text[at])) {
            quoted = true;
        } else if (Has(text, at, '[')) {
            at = Skip(text, at + 1, IsDigit) - 1;
        } else if (!Has(text, at, ']')) {
            return at;
        }
    }
}

// Past "=", ":", "=>", ":=" or "=="; kNone: none of them.
std::size_t AfterSeparator(std::string_view text, std::size_t at) {
    if (!Has(text, at, '=') && !Has(text, at, ':')) {
        return kNone;
    }
    return Skip(text, at + 1, [](char c) { return c == '=' || c == '>'; });
}

// Whether the text in quotes is the name of a value that follows it, and no value itself.
bool IsMemberName(std::string_view text, std::size_t quote) {
    const std::size_t close = text.substr(0, quote + kLongestMemberName).find(text[quote], quote + 1);
    return close != kNone && AfterSeparator(text, Skip(text, close + 1, IsGap)) != kNone;
}

// ["access_token","v"], {"name":"access_token","value":"v"} and their like: at stands behind the quoted name.
std::size_t PairedValue(std::string_view text, std::size_t at) {
    const std::size_t next = Has(text, at, ',') ? Skip(text, at + 1, IsGap) : at;
    if (next != at && next < text.size() && IsQuote(text[next]) && !IsMemberName(text, next)) {
        return next;
    }
    std::string_view near = text.substr(0, at + kLookAhead);
    near = near.substr(0, near.find('}', at));
    for (std::size_t i = at; i < near.size(); ++i) {
        const std::size_t word = After(near, i, "value");
        const std::size_t quote = word == kNone ? kNone : Skip(near, word, IsQuote);
        const std::size_t value = quote == kNone ? kNone : AfterSeparator(near, Skip(near, quote, IsGap));
        if (value != kNone) {
            return Skip(text, value, IsGap);
        }
    }
    return kNone;
}

// <access_token>v</access_token>, with a prefix and attributes too: at is where the secret's name was found.
std::size_t ElementValue(std::string_view text, std::size_t at, std::size_t afterName) {
    std::size_t first = at;
    while (first > 0 && at - first < kLongestMemberName &&
           (IsNameCharacter(text[first - 1]) || text[first - 1] == ':')) {
        --first;
    }
    const bool opened = first > 0 && text[first - 1] == '<';
    if (!opened || (afterName < text.size() && IsNameCharacter(text[afterName]))) {
        return kNone;
    }
    const std::size_t close = text.substr(0, afterName + kLookAhead).find_first_of("<>", afterName);
    return close != kNone && text[close] == '>' && text[close - 1] != '/' ? close + 1 : kNone;
}

}  // namespace

std::size_t AfterSecretName(std::string_view text, std::size_t at) {
    return SecretNameAt(text, at).after;
}

std::size_t AfterBearer(std::string_view text, std::size_t at) {
    const std::size_t word = After(text, at, "bearer");
    if (word == kNone) {
        return kNone;
    }
    const auto separates = [](char c) { return IsGap(c) || c == '+' || c == ':' || c == '=' || c == '<'; };
    const std::size_t value = Skip(text, word, separates);
    return value == word ? kNone : Skip(text, value, IsQuote);
}

NamedValue NamedValueAt(std::string_view text, std::size_t at) {
    const Name name = SecretNameAt(text, at);
    NamedValue value;
    if (name.after == kNone) {
        return value;
    }
    const std::size_t end = PastNameEnd(text, name.after, value.quotedName);
    const auto isGap = [&value](char c) { return IsBlank(c) || (value.quotedName && IsLineBreak(c)); };
    const std::size_t joint = Skip(text, end, isGap);
    const std::size_t direct = AfterSeparator(text, joint);
    const bool colon = Has(text, joint, ':');
    value.mayBeStatus = name.mayBeStatus;
    value.restOfLine = name.header || colon;
    if (direct == kNone) {
        value.element = !value.quotedName;
        value.begin = value.element ? ElementValue(text, at, name.after) : PairedValue(text, joint);
    } else if (!name.mayBeStatus || value.quotedName || !colon) {  // "exit code: 5" is prose
        value.begin = Skip(text, direct, isGap);
    }
    return value;
}

}  // namespace suite
