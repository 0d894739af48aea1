#pragma once

#include <string>

#include "crypto/OpenSslTypes.h"

namespace sandbox {

// A server's key and certificate with the authority that signed it. All keys are P-256 and live in memory only.
struct ServerIdentity {
    KeyPtr key;
    CertificatePtr certificate;
    std::string authorityPem;  // the authority's own certificate
};

// Makes an authority and a certificate signed by it for one host name or IP address, valid from an hour ago for 30
// days. Throws std::runtime_error when name cannot stand in a certificate or OpenSSL fails.
ServerIdentity MakeServerIdentity(const std::string& name);

}  // namespace sandbox
