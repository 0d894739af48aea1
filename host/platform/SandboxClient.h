#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace host {

// The endpoints that a sandbox platform has for itself, below "/sandbox". What is asked here is no part of the session:
// the steps do not show it among their exchanges. baseUrl: without a slash at the end; path: with one at its start.

// The object that it answers with; nothing when there is no sandbox at that URL, or it refuses.
std::optional<Json::Value> AskSandbox(const std::string& baseUrl, const std::string& path);

// Whether it took the text, JSON.
bool TellSandbox(const std::string& baseUrl, const std::string& path, const std::string& json);

}  // namespace host
