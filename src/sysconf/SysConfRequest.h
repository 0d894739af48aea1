#pragma once

#include <string>

#include "sysconf/BasicServiceRequest.h"

namespace userauth {

// A request for the account's system configuration, or for a look at its activation: both name the country and say that
// the activation was asked for by hand. URL and hooks are the operation's own.
BasicServiceRequest SysConfRequest(const std::wstring& countryCode);

}  // namespace userauth
