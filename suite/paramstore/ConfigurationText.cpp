#include "ConfigurationText.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "Utf8Text.h"

namespace {

constexpr std::size_t kMaxFileBytes = 1024 * 1024;
// The file is two levels deep. The library's own limit of 1000 would cost stack for nothing.
constexpr int kMaxNesting = 16;
constexpr std::size_t kMaxPrintedKey = 64;

// A key as an error text may show it: short and on one line, whatever the file's author wrote.
std::string PrintableKey(const std::string& key) {
    std::string printable = key.substr(0, kMaxPrintedKey);
    std::replace_if(
        printable.begin(), printable.end(), [](char c) { return c < 0x20 || c > 0x7E; }, '?');
    return printable;
}

// The parser words its first error as "* Line 3, Column 5\n  reason\n": ":3: not valid JSON: reason".
std::string ParserError(const std::string& text) {
    const std::string start = "* Line ";
    const std::size_t comma = text.find(',');
    const std::size_t lineFeed = text.find('\n');
    if (text.compare(0, start.size(), start) != 0 || comma == std::string::npos || lineFeed == std::string::npos) {
        return ": not valid JSON";
    }
    std::string reason = text.substr(lineFeed + 1, text.find('\n', lineFeed + 1) - lineFeed - 1);
    reason.erase(0, reason.find_first_not_of(' '));
    return ":" + text.substr(start.size(), comma - start.size()) + ": not valid JSON: " + reason;
}

}  // namespace

ConfigurationText::ConfigurationText(std::wstring file) : m_file(std::move(file)) {}

bool ConfigurationText::Read(std::string& error) {
    return ReadBytes(error) && Parse(error);
}

bool ConfigurationText::ReadBytes(std::string& error) {
    std::ifstream stream(std::filesystem::path(m_file), std::ios::binary);
    m_text.resize(kMaxFileBytes + 1);
    stream.read(m_text.data(), static_cast<std::streamsize>(m_text.size()));
    m_text.resize(static_cast<std::size_t>(stream.gcount()));
    const char* reason = nullptr;
    if (!stream.is_open() || stream.bad()) {
        reason = "cannot be read";
    } else if (m_text.size() > kMaxFileBytes) {
        reason = "larger than 1 MiB";
    } else if (!suite::WideFromValidUtf8(m_text)) {
        reason = "not valid UTF-8";
    }
    if (reason != nullptr) {
        error = suite::Utf8FromWide(m_file) + ": " + reason;
        return false;
    }
    const std::string byteOrderMark = "\xEF\xBB\xBF";
    if (m_text.compare(0, byteOrderMark.size(), byteOrderMark) == 0) {
        m_text.erase(0, byteOrderMark.size());
    }
    return true;
}

bool ConfigurationText::Parse(std::string& error) {
    // The parser takes a NUL for the end of the text and would pass over the rest in silence.
    const std::size_t nul = m_text.find('\0');
    if (nul != std::string::npos) {
        error = suite::Utf8FromWide(m_file) + ":" + std::to_string(LineAt(static_cast<std::ptrdiff_t>(nul))) +
                ": not valid JSON: NUL character";
        return false;
    }
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    builder["stackLimit"] = kMaxNesting;
    std::string parserText;
    try {
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        if (!reader->parse(m_text.data(), m_text.data() + m_text.size(), &m_root, &parserText)) {
            error = suite::Utf8FromWide(m_file) + ParserError(parserText);
            return false;
        }
    } catch (const std::exception&) {  // what the parser does at its nesting limit
        error = suite::Utf8FromWide(m_file) + ": nested deeper than " + std::to_string(kMaxNesting) + " levels";
        return false;
    }
    if (!m_root.isObject()) {
        error = suite::Utf8FromWide(m_file) + ":" + std::to_string(LineAt(m_root.getOffsetStart())) +
                ": must be a JSON object";
        return false;
    }
    return true;
}

std::string ConfigurationText::MemberError(const Json::Value& value, const std::string& key,
                                           const std::string& reason) const {
    return suite::Utf8FromWide(m_file) + ":" + std::to_string(LineAt(value.getOffsetStart())) + ": " +
           PrintableKey(key) + ": " + reason;
}

std::size_t ConfigurationText::LineAt(std::ptrdiff_t offset) const {
    const std::ptrdiff_t end = std::min(offset, static_cast<std::ptrdiff_t>(m_text.size()));
    return static_cast<std::size_t>(
        1 + std::count(m_text.begin(), m_text.begin() + std::max<std::ptrdiff_t>(end, 0), '\n'));
}
