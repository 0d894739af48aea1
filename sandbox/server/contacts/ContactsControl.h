#pragma once

#include "contacts/ContactExports.h"
#include "http/EndpointTable.h"
#include "state/PlatformState.h"

namespace sandbox {

// The endpoints under /sandbox for the contacts portal: the current account's login and what it is served.
// The arguments must outlive the table.
void AddContactsControl(EndpointTable& endpoints, const PlatformState& state, ContactExports& exports);

}  // namespace sandbox
