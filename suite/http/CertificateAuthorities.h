#pragma once

#include <openssl/ossl_typ.h>

#include <memory>
#include <string>

namespace suite {

// The authorities to trust.
struct Authorities {
    // PEM for libcurl, which reads it for every connection and tells connections apart by it. Empty: Windows judges.
    std::string pem;
    // All certificates of the file, read once. The PEM is one of them then, behind the digest of the file. Null:
    // Windows judges, or the PEM is the file's, which could not be read here and is left to libcurl.
    std::shared_ptr<X509_STORE> certificates;
};

// Remembers the file for requests that name none; empty: Windows judges. Any thread.
void SetDefaultAuthoritiesPath(const std::wstring& path);

// The authorities of a request: of its own file, else of the default file, else none. Of the files read last a few
// are kept for as long as their size and time stay; of those that could not be read for want of memory, or because they
// are damaged, none. Null when the file cannot be read, is larger than any sensible bundle, holds no certificate or one
// that does not begin with its line. Any thread.
std::shared_ptr<const Authorities> AuthoritiesFor(const std::wstring& ownPath);

}  // namespace suite
