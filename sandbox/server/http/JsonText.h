#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <json/value.h>

namespace sandbox {

// A JSON text as one value, or the reason why it is none.
struct ParsedJson {
    Json::Value value;   // an object when reason is empty
    std::string reason;  // one line
};

// Strict JSON with an object at its root; comments, repeated names, anything behind the object and nesting beyond 64
// levels are refused. Never throws.
ParsedJson ParseJsonObject(const std::string& text) noexcept;

// One line without blanks and without a line feed, in UTF-8.
std::string JsonLine(const Json::Value& value);

// Whether text, from which object was parsed, is one line without blanks that holds exactly the members of these names,
// in this order, and ends in one line feed.
bool IsCompactLine(const std::string& text, const Json::Value& object, std::initializer_list<std::string_view> names);

}  // namespace sandbox
