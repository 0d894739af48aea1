#pragma once

#include <json/value.h>

#include <string>

// Reading JSON that a stranger wrote: none of these throws on its content.
namespace accountsdk {

// The object that a text holds; null when it is anything else, nested too deeply or followed by more text.
Json::Value ParseObject(const std::string& text);

// A text member of an object; empty when it is missing or of another type.
std::string TextMember(const Json::Value& object, const char* name);

// A JSON value on one line.
std::string CompactText(const Json::Value& value);

}  // namespace accountsdk
