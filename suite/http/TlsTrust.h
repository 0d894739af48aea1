#pragma once

#include <curl/curl.h>

#include <string>

#include "CertificateAuthorities.h"

namespace suite {

// Sets whom the next transfer of the handle trusts over TLS: the authorities, or Windows when they are empty. address:
// of the host that is asked for, which the certificate must name then; empty when it is asked for by name. Neither is
// copied; both must live until the handle is reset.
void SetTlsOptions(CURL* handle, const Authorities& authorities, const std::string& address);

}  // namespace suite
