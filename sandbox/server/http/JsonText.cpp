#include "http/JsonText.h"

#include <algorithm>
#include <memory>

#include <json/reader.h>
#include <json/writer.h>

namespace sandbox {
namespace {

constexpr int kDeepestNesting = 64;

std::unique_ptr<Json::CharReader> StrictReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = kDeepestNesting;
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

std::string FirstLine(const std::string& text) {
    std::string line = text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

ParsedJson Parse(const std::string& text) {
    ParsedJson parsed;
    std::string errors;
    if (!StrictReader()->parse(text.data(), text.data() + text.size(), &parsed.value, &errors)) {
        parsed.reason = "is not JSON: " + FirstLine(errors);
    } else if (!parsed.value.isObject()) {
        parsed.reason = "is not a JSON object";
    }
    return parsed;
}

}  // namespace

ParsedJson ParseJsonObject(const std::string& text) noexcept {
    // The library throws on nesting beyond its limit, and when there is no memory left.
    try {
        return Parse(text);
    } catch (...) {
        ParsedJson refused;
        refused.reason = "is nested too deeply, or too large for the memory";
        return refused;
    }
}

std::string JsonLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

bool IsCompactLine(const std::string& text, const Json::Value& object, std::initializer_list<std::string_view> names) {
    std::string expected = "{";
    for (const auto name : names) {
        const auto* member = object.find(name.data(), name.data() + name.size());
        if (member == nullptr) {
            return false;
        }
        // The value as it was written, so that no way of escaping is preferred.
        const auto start = static_cast<std::size_t>(member->getOffsetStart());
        const auto length = static_cast<std::size_t>(member->getOffsetLimit()) - start;
        expected += expected.size() == 1 ? "\"" : ",\"";
        expected += std::string(name) + "\":" + text.substr(std::min(start, text.size()), length);
    }
    return text == expected + "}\n";
}

}  // namespace sandbox
