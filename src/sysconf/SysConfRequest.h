#pragma once

#include <string>

#include "sysconf/BasicServiceRequest.h"

namespace userauth {

// Completes a request for the account's system configuration or for its activation: both name the country and say that
// the activation was asked for by hand.
void AskForSysConf(BasicServiceRequest& request, const std::wstring& countryCode);

}  // namespace userauth
