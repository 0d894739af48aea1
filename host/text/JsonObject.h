#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace host {

// A JSON text whose root is an object; nothing when it is another text, or one that is nested too deeply.
std::optional<Json::Value> ParseJsonObject(const std::string& text);

// A member that is a text, else empty. root: an object.
std::string TextMember(const Json::Value& root, const char* name);

}  // namespace host
