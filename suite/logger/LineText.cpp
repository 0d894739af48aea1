#include "LineText.h"

#include <algorithm>

#include "Logger.h"
#include "SecretValues.h"
#include "Utf8Text.h"

namespace suite {
namespace {

constexpr std::string_view kContinuation = "\n    ";

std::string Hex(unsigned value, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        text += "0123456789abcdef"[(value >> shift) & 0x0F];
    }
    return text;
}

// Control characters beyond ASCII: U+0080 to U+009F are C2 80 to C2 9F, U+2028 and U+2029 are E2 80 A8 and E2 80 A9.
// Returns the escaped form and sets the number of bytes; 0 bytes: nothing of the kind stands here.
std::string EscapeUnicodeControl(std::string_view rest, std::size_t& bytes) {
    const auto byteAt = [rest](std::size_t i) { return i < rest.size() ? static_cast<unsigned char>(rest[i]) : 0U; };
    bytes = 0;
    if (byteAt(0) == 0xC2 && byteAt(1) >= 0x80 && byteAt(1) <= 0x9F) {
        bytes = 2;
        return "\\u" + Hex(byteAt(1), 4);
    }
    if (byteAt(0) == 0xE2 && byteAt(1) == 0x80 && (byteAt(2) == 0xA8 || byteAt(2) == 0xA9)) {
        bytes = 3;
        return "\\u" + Hex(0x2000 + byteAt(2) - 0x80, 4);
    }
    return std::string();
}

}  // namespace

std::string LogTextOf(std::wstring_view text, const SecretValues* secrets) {
    constexpr std::size_t kMaxUnits = 64 * 1024;
    std::string kept = Utf8FromWide(text.substr(0, kMaxUnits));
    const std::wstring_view beyond = text.substr(std::min(text.size(), kMaxUnits));
    if (secrets != nullptr) {
        const std::size_t limit = kept.size();
        kept += Utf8FromWide(beyond.substr(0, secrets->LongestForm()));
        kept = secrets->Masked(kept, limit);
    }
    if (!beyond.empty()) {
        kept += " [cut: " + std::to_string(beyond.size()) + " more]";
    }
    return kept;
}

std::string SeverityName(int severity) {
    switch (severity) {
        case kSeveritySummary:
            return "summary";
        case kSeverityProgress:
            return "progress";
        case kSeverityFailure:
            return "failure";
        default:
            return std::to_string(severity);
    }
}

std::string EscapeForLog(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        std::size_t bytes = 0;
        const std::string escaped = EscapeUnicodeControl(text.substr(i, 3), bytes);
        if (bytes != 0) {
            line += escaped;
            i += bytes - 1;
        } else if (c == '\r' || c == '\n') {
            i += c == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 1 : 0;
            line += kContinuation;
        } else if ((static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F) {
            line += "\\x" + Hex(static_cast<unsigned char>(c), 2);
        } else {
            line += c;
        }
    }
    return line;
}

}  // namespace suite
