#pragma once

#include <functional>
#include <string>

#include <json/value.h>

#include "http/Exchange.h"

namespace sandbox {

// One server-sent event.
std::string EventText(const char* name, const Json::Value& value);

// A reply of server-sent events: news is asked ten times a second for the next ones. Each open stream holds a thread of
// its listener, so there are 16 at most in the process; with all of them taken the reply is 503.
PlatformReply EventStreamReply(std::function<std::string()> news);

}  // namespace sandbox
