#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include <json/value.h>

namespace sandbox {

// Reads strict JSON with an object at its root. Throws Refusal on anything else: also on comments, repeated names, text
// behind the object and more than 64 levels of nesting.
Json::Value ParseJsonBody(const std::string& body);

// An object of these members.
Json::Value JsonObject(std::initializer_list<std::pair<const char*, Json::Value>> members);

// One line without blanks and without a line feed, in UTF-8, members in the order of their names.
std::string JsonLine(const Json::Value& value);

}  // namespace sandbox
