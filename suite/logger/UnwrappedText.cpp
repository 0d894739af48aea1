#include "UnwrappedText.h"

#include <algorithm>
#include <utility>

#include "TextScan.h"

namespace suite {
namespace {

// Whatever is wrapped deeper is no accident of logging.
constexpr int kMaxWrappings = 8;

struct Decoded {
    char character;
    std::size_t after;  // the position asked about: nothing is encoded there
};

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    return Lower(c) >= 'a' && Lower(c) <= 'f' ? Lower(c) - 'a' + 10 : -1;
}

// The character that the hexadecimal digits at the position name.
Decoded FromHex(std::string_view text, std::size_t at, std::size_t digits, std::size_t unchanged) {
    unsigned value = 0;
    for (std::size_t i = at; i < at + digits; ++i) {
        const int digit = i < text.size() ? HexDigit(text[i]) : -1;
        if (digit < 0) {
            return {0, unchanged};
        }
        value = value * 16 + static_cast<unsigned>(digit);
    }
    return value < (digits == 2 ? 0x100U : 0x80U) ? Decoded{static_cast<char>(value), at + digits}
                                                  : Decoded{0, unchanged};
}

// "&#61;" and "&#x3D;": at stands behind the "#".
Decoded FromNumber(std::string_view text, std::size_t at, std::size_t unchanged) {
    const bool hex = at < text.size() && Lower(text[at]) == 'x';
    unsigned value = 0;
    std::size_t i = hex ? at + 1 : at;
    for (; i < text.size() && i < at + 8 && HexDigit(text[i]) >= 0 && value < 0x80; ++i) {
        value = value * (hex ? 16 : 10) + static_cast<unsigned>(HexDigit(text[i]));
    }
    const bool ends = i < text.size() && text[i] == ';';
    return ends && value < 0x80 ? Decoded{static_cast<char>(value), i + 1} : Decoded{0, unchanged};
}

Decoded FromEntity(std::string_view text, std::size_t at) {
    constexpr std::pair<std::string_view, char> kEntities[] = {
        {"&amp;", '&'}, {"&quot;", '"'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&apos;", '\''}};
    if (After(text, at, "&#") != kNone) {
        return FromNumber(text, at + 2, at);
    }
    for (const auto& [entity, character] : kEntities) {
        const std::size_t after = After(text, at, entity);
        if (after != kNone) {
            return {character, after};
        }
    }
    return {0, at};
}

// escaped: a backslash stands in front.
Decoded DecodeAt(std::string_view text, std::size_t at, bool escaped) {
    switch (text[at]) {
        case '%':
            return FromHex(text, at + 1, 2, at);
        case '&':
            return FromEntity(text, at);
        case 'u':
            return escaped ? FromHex(text, at + 1, 4, at) : Decoded{0, at};
        case 'x':
            return escaped ? FromHex(text, at + 1, 2, at) : Decoded{0, at};
        default:
            return {0, at};
    }
}

}  // namespace

UnwrappedText::UnwrappedText(std::string_view original, const LevelFunction& onLevel) : m_text(original) {
    std::size_t before = m_text.size() + 1;
    for (int level = 0; level < kMaxWrappings && m_text.size() < before && IsWrapped(m_text); ++level) {
        before = m_text.size();
        TakeOneLevelOff();
        if (onLevel) {
            onLevel(*this);
        }
    }
}

bool UnwrappedText::IsWrapped(std::string_view text) {
    // Every character of every line comes by here: a library call for each, as find_first_of makes it, would show.
    return std::any_of(text.begin(), text.end(), [](char c) { return c == '%' || c == '\\' || c == '&' || c == '\0'; });
}

void UnwrappedText::TakeOneLevelOff() {
    std::string text;
    std::vector<std::size_t> begins;
    text.reserve(m_text.size());
    begins.reserve(m_text.size() + 1);
    for (std::size_t at = 0; at < m_text.size();) {
        begins.push_back(OriginalAt(at));
        bool escaped = false;
        for (; at < m_text.size() && (m_text[at] == '\\' || m_text[at] == '\0'); ++at) {
            escaped = escaped || m_text[at] == '\\';
        }
        if (at == m_text.size()) {
            begins.pop_back();  // marks with nothing behind them
            break;
        }
        const Decoded decoded = DecodeAt(m_text, at, escaped);
        text += decoded.after == at ? m_text[at] : decoded.character;
        at = decoded.after == at ? at + 1 : decoded.after;
    }
    begins.push_back(OriginalAt(m_text.size()));
    m_text = std::move(text);
    m_begins = std::move(begins);
}

}  // namespace suite
