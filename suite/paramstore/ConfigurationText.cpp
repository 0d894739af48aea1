#include "ConfigurationText.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>

#include "Utf8Text.h"

namespace suite {
namespace {

constexpr std::size_t kMaxFileBytes = 1024 * 1024;
// The text is two levels deep. The library's own limit of 1000 would cost stack for nothing.
constexpr int kMaxNesting = 16;
constexpr std::size_t kMaxPrintedKey = 64;
constexpr std::size_t kMaxPrintedReason = 128;
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// A part of the text as an error may show it: short and on one line, whatever the text's author wrote.
std::string Printable(const std::string& part, std::size_t limit) {
    std::string printable = part.substr(0, limit);
    std::replace_if(
        printable.begin(), printable.end(), [](char c) { return c < 0x20 || c > 0x7E; }, '?');
    return printable;
}

// The parser words its first error as "* Line 3, Column 5\n  reason\n": ":3: not valid JSON: reason". The reason may
// quote the text.
std::string ParserError(const std::string& text) {
    const std::string start = "* Line ";
    const std::size_t comma = text.find(',');
    const std::size_t lineFeed = text.find('\n');
    if (text.compare(0, start.size(), start) != 0 || comma == std::string::npos || lineFeed == std::string::npos) {
        return ": not valid JSON";
    }
    std::string reason = text.substr(lineFeed + 1, text.find('\n', lineFeed + 1) - lineFeed - 1);
    reason.erase(0, reason.find_first_not_of(' '));
    return ":" + text.substr(start.size(), comma - start.size()) +
           ": not valid JSON: " + Printable(reason, kMaxPrintedReason);
}

}  // namespace

ConfigurationText ConfigurationText::InFile(const std::wstring& file) {
    ConfigurationText text;
    text.m_file = file;
    return text;
}

ConfigurationText ConfigurationText::InMemory(const std::string& text) {
    ConfigurationText held;
    held.m_text = text;
    return held;
}

bool ConfigurationText::Read(std::string& error) {
    if (m_file) {
        m_name = Utf8FromWide(*m_file);
    }
    if (const char* const reason = ReadBytes()) {
        error = m_name + ": " + reason;
        return false;
    }
    const std::string fault = Parse();
    error = fault.empty() ? error : m_name + fault;
    return fault.empty();
}

// What is wrong with the bytes; null when they can be parsed.
const char* ConfigurationText::ReadBytes() {
    if (m_file) {
        std::ifstream stream(std::filesystem::path(*m_file), std::ios::binary);
        m_text.resize(kMaxFileBytes + 1);
        stream.read(m_text.data(), static_cast<std::streamsize>(m_text.size()));
        m_text.resize(static_cast<std::size_t>(stream.gcount()));
        if (!stream.is_open() || stream.bad()) {
            return "cannot be read";
        }
    }
    if (m_text.size() > kMaxFileBytes) {
        return "larger than 1 MiB";
    }
    if (!WideFromValidUtf8(m_text)) {
        return "not valid UTF-8";
    }
    if (m_text.rfind(kByteOrderMark, 0) == 0) {
        m_text.erase(0, sizeof(kByteOrderMark) - 1);
    }
    return nullptr;
}

// What follows the name in the error text; empty when the root is there.
std::string ConfigurationText::Parse() {
    // The parser takes a NUL for the end of the text and would pass over the rest in silence.
    if (const std::size_t nul = m_text.find('\0'); nul != std::string::npos) {
        return LinePrefix(static_cast<std::ptrdiff_t>(nul)) + "not valid JSON: NUL character";
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
            return ParserError(parserText);
        }
    } catch (const Json::Exception&) {  // what the parser does at its nesting limit
        return ": nested deeper than " + std::to_string(kMaxNesting) + " levels";
    }
    return m_root.isObject() ? "" : LinePrefix(m_root.getOffsetStart()) + "must be a JSON object";
}

std::string ConfigurationText::MemberError(const Json::Value& value, const std::string& key,
                                           const std::string& reason) const {
    return m_name + LinePrefix(value.getOffsetStart()) + Printable(key, kMaxPrintedKey) + ": " + reason;
}

std::string ConfigurationText::LinePrefix(std::ptrdiff_t offset) const {
    const auto end = std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(m_text.size()));
    return ":" + std::to_string(1 + std::count(m_text.begin(), m_text.begin() + end, '\n')) + ": ";
}

}  // namespace suite
