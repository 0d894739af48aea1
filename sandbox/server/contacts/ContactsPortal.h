#pragma once

#include "contacts/ContactExports.h"
#include "http/EndpointTable.h"

namespace sandbox {

// The contacts portal: an account's contacts as a download. exports must outlive the table.
void AddContactsEndpoint(EndpointTable& endpoints, const ContactExports& exports);

}  // namespace sandbox
