#pragma once

#include "contacts/ContactExports.h"
#include "http/EndpointTable.h"
#include "state/PlatformState.h"

// The contacts portal. The arguments must outlive the table.
namespace sandbox {

// An account's contacts as a download.
void AddContactsEndpoint(EndpointTable& endpoints, const ContactExports& exports);
// Under /sandbox: the current account's login and what it is served.
void AddContactsControl(EndpointTable& endpoints, const PlatformState& state, ContactExports& exports);

}  // namespace sandbox
