#include "MaskSecrets.h"

#include <algorithm>
#include <vector>

#include "SecretNames.h"
#include "TextScan.h"
#include "UnwrappedText.h"

namespace suite {
namespace {

struct Span {
    std::size_t begin;
    std::size_t end;  // not behind begin: there is no secret
};

constexpr Span kNoSecret = {0, 0};

// Position of the next "a", "b", "c" or "t" in any letter case: what begins "authorization", "bearer", "code", "cookie"
// and "token".
std::size_t NextFirstLetter(std::string_view text, std::size_t at) {
    return Skip(text, at, [](char c) {
        const char lower = Lower(c);
        return lower != 'a' && lower != 'b' && lower != 'c' && lower != 't';
    });
}

// Looks for names in the unwrapped text, and for the ends of values in the original: there the escapes of a quote tell
// which quote closes the value.
class SecretScan {
public:
    explicit SecretScan(std::string_view text) : m_original(text), m_unwrapped(text), m_plain(m_unwrapped.Text()) {}

    std::string Masked();

private:
    std::size_t OriginalAt(std::size_t at) const { return m_unwrapped.OriginalAt(at); }
    bool IsMasked(std::size_t at) const { return at >= m_last.begin && at < m_last.end; }

    Span SecretAt(std::size_t at) const;
    Span ValueSpan(const NamedValue& value) const;
    std::size_t EndOfUnquoted(const NamedValue& value) const;

    std::string_view m_original;
    UnwrappedText m_unwrapped;
    std::string_view m_plain;
    Span m_last = kNoSecret;  // of the spans so far the one that ends last
};

// A number of up to five digits, as in "code=404".
bool IsStatus(std::string_view value) {
    const std::size_t digits = Skip(value, 0, [](char c) { return c >= '0' && c <= '9'; });
    return digits <= 5 && value.find_first_not_of(",;.", digits) == kNone;
}

std::size_t SecretScan::EndOfUnquoted(const NamedValue& value) const {
    const std::size_t begin = OriginalAt(value.begin);
    if (value.element) {
        const std::size_t text = Skip(m_plain, value.begin, [](char c) { return c == '<'; });
        return OriginalAt(std::min(m_plain.find('<', text), m_plain.size()));
    }
    if (begin < m_original.size() && (m_original[begin] == '{' || m_original[begin] == '[')) {
        return m_original.size();  // not a token's shape at all: nothing tells where it ends
    }
    if (value.quotedName) {
        return EndOfRun(m_original, begin, ",}]");
    }
    if (value.restOfLine) {
        return EndOfHeaderValue(m_original, begin);
    }
    const std::size_t bearer = AfterBearer(m_plain, value.begin);
    const std::size_t run = bearer == kNone ? begin : OriginalAt(bearer);
    return EndOfRun(m_original, Skip(m_original, run, [](char c) { return c == '<'; }), "&<>");
}

Span SecretScan::ValueSpan(const NamedValue& value) const {
    if (value.element) {
        return {OriginalAt(value.begin), EndOfUnquoted(value)};
    }
    const Quote opening = QuoteAt(m_original, OriginalAt(value.begin));
    if (opening.character != 0) {
        return {opening.after, EndOfQuoted(m_original, opening)};
    }
    if (value.begin < m_plain.size() && IsQuote(m_plain[value.begin])) {  // encoded: "%22v%22", "&quot;v&quot;"
        const Quote encoded = QuoteAt(m_plain, value.begin);
        return {OriginalAt(encoded.after), OriginalAt(EndOfQuoted(m_plain, encoded))};
    }
    return {OriginalAt(value.begin), EndOfUnquoted(value)};
}

// A name counts unless its value begins in what is masked already: what looked like a value may have been none, and a
// value may stand behind other names.
Span SecretScan::SecretAt(std::size_t at) const {
    const NamedValue value = NamedValueAt(m_plain, at);
    if (value.begin != kNone && IsMasked(OriginalAt(value.begin))) {
        return kNoSecret;
    }
    if (value.begin != kNone) {
        const Span span = ValueSpan(value);
        const bool status = value.mayBeStatus && IsStatus(m_original.substr(span.begin, span.end - span.begin));
        return status ? kNoSecret : span;
    }
    const bool startsWord = Lower(m_plain[at]) == 'b' && (at == 0 || !IsWordCharacter(m_plain[at - 1]));
    const std::size_t bearer = startsWord ? AfterBearer(m_plain, at) : kNone;
    const std::size_t begin = bearer == kNone ? 0 : OriginalAt(bearer);
    return bearer == kNone || IsMasked(begin) ? kNoSecret : Span{begin, EndOfRun(m_original, begin, "&<>,;")};
}

std::string SecretScan::Masked() {
    std::vector<Span> secrets;
    for (std::size_t i = NextFirstLetter(m_plain, 0); i < m_plain.size(); i = NextFirstLetter(m_plain, i + 1)) {
        const Span secret = SecretAt(i);
        if (secret.begin < secret.end) {
            secrets.push_back(secret);
            m_last = secret.end > m_last.end ? secret : m_last;
        }
    }
    std::sort(secrets.begin(), secrets.end(), [](const Span& a, const Span& b) { return a.begin < b.begin; });
    std::string masked;
    std::size_t copied = 0;
    for (const Span& secret : secrets) {
        if (secret.begin >= copied) {
            masked.append(m_original, copied, secret.begin - copied).append("***");
        }
        copied = std::max(copied, secret.end);
    }
    return masked.append(m_original.substr(copied));
}

}  // namespace

std::string MaskSecrets(std::string_view text) {
    return SecretScan(text).Masked();
}

bool IsSecretName(std::string_view name) {
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (AfterSecretName(name, i) == name.size()) {
            return true;
        }
    }
    return false;
}

}  // namespace suite
