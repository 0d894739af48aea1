#include "SecretValues.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Logger.h"
#include "UnwrappedText.h"

namespace suite {
namespace {

constexpr std::size_t kMaxSecrets = 32;
constexpr std::size_t kMaxSecretBytes = std::size_t{64} * 1024;  // of all of them
// One character in UTF-16, read as bytes and percent-encoded twice: "%2541%2500". A value that goes on behind the limit
// of a text is not found when it is encoded more deeply than that.
constexpr std::size_t kLongestEncoding = 12;

// The digits that base64 has for the value whatever stands around it. skipped: how many bytes stand before the value,
// modulo 3. A digit holds six bits; one that also holds bits of a neighbouring byte is left out.
std::string Base64Core(std::string_view value, std::size_t skipped) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto byteAt = [value, skipped](std::size_t i) {
        return i >= skipped && i - skipped < value.size() ? static_cast<unsigned char>(value[i - skipped]) : 0U;
    };
    std::string digits;
    digits.reserve(value.size() * 4 / 3 + 1);
    for (std::size_t bit = (skipped * 8 + 5) / 6 * 6; bit + 6 <= (skipped + value.size()) * 8; bit += 6) {
        const unsigned twoBytes = byteAt(bit / 8) << 8 | byteAt(bit / 8 + 1);
        digits += kDigits[twoBytes >> (10 - bit % 8) & 0x3F];
    }
    return digits;
}

std::string Hexadecimal(std::string_view value, const char* digits) {
    std::string text;
    text.reserve(2 * value.size());
    for (const char c : value) {
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[static_cast<unsigned char>(c) & 0xF];
    }
    return text;
}

std::vector<std::string> FormsOf(const std::map<std::string, std::string>& values) {
    std::vector<std::string> forms;
    for (const auto& [name, value] : values) {
        const std::string unwrapped = UnwrappedText::IsWrapped(value) ? UnwrappedText(value).Text() : std::string();
        if (unwrapped.size() >= kShortestSecret) {
            forms.push_back(unwrapped);
        }
        for (std::size_t skipped = 0; skipped < 3; ++skipped) {
            forms.push_back(Base64Core(value, skipped));
        }
        forms.push_back(Hexadecimal(value, "0123456789abcdef"));
        forms.push_back(Hexadecimal(value, "0123456789ABCDEF"));
        forms.push_back(value);
    }
    return forms;
}

// Wipes the forms when the search has been made from them.
struct Forms {
    std::vector<std::string> texts;
    ~Forms() { std::for_each(texts.begin(), texts.end(), Wipe); }
};

std::size_t LongestOf(const std::map<std::string, std::string>& values) {
    std::size_t longest = 0;
    for (const auto& [name, value] : values) {
        longest = std::max(longest, value.size());
    }
    return longest;
}

}  // namespace

SecretValues::SecretValues(const std::map<std::string, std::string>& values)
    : m_longestForm(LongestOf(values) * kLongestEncoding), m_search(Forms{FormsOf(values)}.texts) {}

std::string SecretValues::Masked(std::string_view text, std::size_t limit) const {
    std::vector<PatternSearch::Match> matches = m_search.FindAll(text);
    if (UnwrappedText::IsWrapped(text)) {
        const UnwrappedText unwrapped(text, [this, &matches](const UnwrappedText& soFar) {
            for (const PatternSearch::Match& match : m_search.FindAll(soFar.Text())) {
                matches.push_back({soFar.OriginalAt(match.begin), soFar.OriginalAt(match.end)});
            }
        });
    }
    limit = std::min(limit, text.size());
    if (matches.empty()) {
        return std::string(text.substr(0, limit));
    }
    std::vector<int> steps(text.size() + 1);  // into and out of the values at each position: they may overlap
    for (const PatternSearch::Match& match : matches) {
        ++steps[match.begin];
        --steps[match.end];
    }
    std::string masked;
    int depth = 0;
    for (std::size_t i = 0; i < limit; ++i) {
        const int before = std::exchange(depth, depth + steps[i]);
        if (depth == 0) {
            masked += text[i];
        } else if (before == 0) {
            masked += "***";
        }
    }
    return masked;
}

bool KnownSecrets::Set(const std::string& name, std::string value) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto former = m_values.find(name);
    if (former != m_values.end()) {
        if (former->second == value) {
            Wipe(value);
            return true;
        }
        m_current.reset();
        Wipe(former->second);
        m_values.erase(former);
    }
    std::size_t bytes = value.size();
    for (const auto& [otherName, other] : m_values) {
        bytes += other.size();
    }
    if (value.size() < kShortestSecret || m_values.size() >= kMaxSecrets || bytes > kMaxSecretBytes) {
        const bool cleared = value.empty();
        Wipe(value);
        return cleared;
    }
    m_current.reset();
    m_values.emplace(name, value);
    Wipe(value);  // a short text that is moved leaves its characters behind
    return true;
}

std::shared_ptr<const SecretValues> KnownSecrets::Current() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_current == nullptr && !m_values.empty()) {
        m_current = std::make_shared<const SecretValues>(m_values);
    }
    return m_current;
}

}  // namespace suite
