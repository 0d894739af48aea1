#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace host {

// The control endpoints of a sandbox platform, below "/sandbox". These exchanges are no part of the session, so the
// steps do not show them. baseUrl has no slash at its end, path has one at its start.

// Asks with a GET; the object of the reply. Nothing when no sandbox answers at that URL, or it refuses.
std::optional<Json::Value> AskSandbox(const std::string& baseUrl, const std::string& path);

// Posts a JSON text; whether the sandbox took it.
bool TellSandbox(const std::string& baseUrl, const std::string& path, const std::string& json);

}  // namespace host
