#pragma once

#include <string>

#include <json/value.h>

#include "page/Endpoints.h"

namespace sandbox {

// Everything that the page shows but exchanges.
Json::Value PageState(const PageSources& sources);

// The line that an exchange has in the list.
Json::Value SummaryOf(const ShownExchange& exchange);
// What a click on it shows, secrets masked.
Json::Value DetailsOf(const ShownExchange& exchange);

// The accounts that a person can choose from.
Json::Value AccountList(const PlatformState& state);

}  // namespace sandbox
