#pragma once

#include <string>
#include <vector>

namespace suite {

using CertificateBytes = std::vector<unsigned char>;  // one certificate in DER

// What Windows says about a server's chain, as OpenSSL's X509_V_OK or X509_V_ERR_. chain: the server's certificate
// first, then what it sent besides. serverName: the DNS name that it must be for; empty leaves names to the caller.
// May wait for the network, 5 s at most for each thing that Windows fetches: an authority that it knows but has not
// stored yet, an issuer that the server did not send. Any thread.
int PlatformVerdict(const std::vector<CertificateBytes>& chain, const std::string& serverName);

}  // namespace suite
