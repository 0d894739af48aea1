#pragma once

#include <string>

namespace host {

// Tells the sandbox's account SDK its platform, by a variable of this process's environment that the SDK reads when it
// is initialised, before its configuration file. Another account SDK does not know the variable. Empty takes it away.
void SetPlatformUrlForSdk(const std::string& url);

}  // namespace host
