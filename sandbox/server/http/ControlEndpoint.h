#pragma once

#include <functional>

#include <json/value.h>

#include "http/EndpointTable.h"

// What the endpoints under /sandbox have in common.
namespace sandbox {

// value with status 200.
PlatformReply JsonReply(const Json::Value& value);

// An endpoint whose body is a JSON object; anything else is refused before handler runs.
EndpointHandler WithObject(std::function<PlatformReply(const Json::Value&)> handler);

}  // namespace sandbox
