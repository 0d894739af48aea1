#include "core/JsonText.h"

#include <json/json.h>

#include <exception>
#include <memory>
#include <new>
#include <sstream>
#include <utility>

#include "UserAuthService.h"

namespace userauth {
namespace {

constexpr int kLongestDigitRun = 1024;

// Position behind a string, given that of its opening quote; the text's end when it is not closed.
std::size_t BehindString(const std::string& text, std::size_t quote) {
    for (std::size_t at = quote + 1; at < text.size(); ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == '"') {
            return at + 1;
        }
    }
    return text.size();
}

// Position behind a comment of either kind, given that of its first slash; behind the slash when it begins none.
std::size_t BehindComment(const std::string& text, std::size_t slash) {
    const bool block = text.compare(slash, 2, "/*") == 0;
    if (!block && text.compare(slash, 2, "//") != 0) {
        return slash + 1;
    }
    const std::size_t end = block ? text.find("*/", slash + 2) : text.find_first_of("\r\n", slash + 2);
    return end == std::string::npos ? text.size() : end + (block ? 2 : 1);
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Whether more digits stand in a row anywhere, strings included. A run that is longer than the step between two looks
// is met by one of them, so that hardly any text is read twice.
bool HasLongDigitRun(const std::string& text) {
    constexpr std::size_t kStep = kLongestDigitRun;
    for (std::size_t at = kStep; at < text.size(); at += kStep) {
        if (!IsDigit(text[at])) {
            continue;
        }
        std::size_t begin = at;
        std::size_t end = at + 1;
        for (; begin > 0 && IsDigit(text[begin - 1]); --begin) {
        }
        for (; end < text.size() && IsDigit(text[end]); ++end) {
        }
        if (end - begin > kStep) {
            return true;
        }
    }
    return false;
}

// The C runtime reads a number of n digits in n * n steps: a megabyte of digits takes minutes. Digits within strings
// and comments are not converted and do not count. Strings and comments are found as both readers find them, up to the
// first error in the text; behind an error no number is converted.
bool HasEndlessNumber(const std::string& text) {
    if (!HasLongDigitRun(text)) {
        return false;
    }
    int digits = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char character = text[at];
        digits = IsDigit(character) ? digits + 1 : 0;
        if (digits > kLongestDigitRun) {
            return true;
        }
        at = character == '"' ? BehindString(text, at) : character == '/' ? BehindComment(text, at) : at + 1;
    }
    return false;
}

// Every parse goes through here. Lack of memory is no property of the text and goes on to the operation: a reply that
// could not be read must not look like one without members, which would be stored.
template <typename Read>
bool Parse(const std::string& text, const Read& read) {
    if (HasEndlessNumber(text)) {
        return false;
    }
    try {
        return read(text.data(), text.data() + text.size());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
}

bool ParseByDefaultRules(const std::string& text, Json::Value& value) {
    return Parse(text, [&value](const char* begin, const char* end) {
        // One for the process, never destroyed: its settings are a JSON value that takes longer to make than a short
        // reply to read. Readers are made from it on any thread; it does not change.
        static const auto* const builder = new Json::CharReaderBuilder;
        const std::unique_ptr<Json::CharReader> reader(builder->newCharReader());
        return reader->parse(begin, end, &value, nullptr);
    });
}

}  // namespace

bool ParseJsonText(std::string text, Json::Value& value) {
    if (text.empty() || !ParseByDefaultRules(text, value)) {
        return false;
    }
    return value.isArray() || value.isObject();
}

Json::Value ParseLeniently(const std::string& text) {
    Json::Value value;
    ParseByDefaultRules(text, value);
    return value;
}

std::string WriteBy(const Json::StreamWriterBuilder& rules, const Json::Value& value) {
    std::ostringstream text;
    text.exceptions(std::ios::badbit);
    const std::unique_ptr<Json::StreamWriter> writer(rules.newStreamWriter());
    writer->write(value, &text);
    return text.str();
}

std::string WriteStyledText(const Json::Value& value) {
    const bool hasComment = value.hasComment(Json::commentBefore) || value.hasComment(Json::commentAfterOnSameLine) ||
                            value.hasComment(Json::commentAfter);
    if (!value.isArray() && !value.isObject() && !hasComment) {
        return WriteCompactLine(value);
    }
    const char* const front = value.hasComment(Json::commentBefore) ? "\n" : "";
    return front + WriteBy(Json::StreamWriterBuilder(), value) + "\n";
}

// The older reader and the two writers are deprecated in favour of configurable ones. Those accept other texts, and
// cannot reproduce the writers' layouts to the byte.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#elif defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4996)
#endif

bool ParseDocument(const std::string& text, Json::Value& value) {
    Json::Value parsed;
    const bool done = Parse(text, [&parsed](const char* begin, const char* end) {
        constexpr bool kCollectComments = true;
        return Json::Reader().parse(begin, end, parsed, kCollectComments);
    });
    value = done ? std::move(parsed) : Json::Value();
    return done;
}

std::string WriteCompactLine(const Json::Value& value) {
    return Json::FastWriter().write(value);
}

std::string WriteStyledDocument(const Json::Value& value) {
    return Json::StyledWriter().write(value);
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#elif defined(_MSC_VER)
#pragma warning(pop)
#endif

}  // namespace userauth

Json::Value UserAuthService::StringToJson(std::string text) try { return userauth::ParseLeniently(text); } catch (...) {
    return {};
}
