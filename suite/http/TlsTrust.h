#pragma once

#include <curl/curl.h>

#include "CertificateAuthorities.h"

namespace suite {

// Sets whom the next transfer of the handle trusts over TLS: the authorities, or Windows when they are empty. They are
// not copied and must live until the handle is reset.
void SetTlsOptions(CURL* handle, const Authorities& authorities);

}  // namespace suite
