#pragma once

#include <string>

namespace userauth {

// File of the certificate authorities that every request names to the HTTP library. Always empty: the library applies
// its own default.
std::wstring CertificatePath();

}  // namespace userauth
