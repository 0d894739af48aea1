#pragma once

#include <string>

namespace userauth {

// File of the certificate authorities that every request names to the HTTP library, in the system's ANSI code page.
// Empty and never assigned: the library applies its own default.
extern const std::string g_certificatePath;

// The path as the HTTP library takes it.
std::wstring CertificatePath();

}  // namespace userauth
