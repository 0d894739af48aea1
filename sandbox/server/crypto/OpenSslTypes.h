#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace sandbox {

// Owning types for the OpenSSL objects in use.
struct OpenSslRelease {
    void operator()(BIO* object) const noexcept { BIO_free_all(object); }
    void operator()(BIGNUM* object) const noexcept { BN_free(object); }
    void operator()(EVP_CIPHER_CTX* object) const noexcept { EVP_CIPHER_CTX_free(object); }
    void operator()(EVP_PKEY* object) const noexcept { EVP_PKEY_free(object); }
    void operator()(EVP_PKEY_CTX* object) const noexcept { EVP_PKEY_CTX_free(object); }
    void operator()(X509* object) const noexcept { X509_free(object); }
    void operator()(X509_EXTENSION* object) const noexcept { X509_EXTENSION_free(object); }
};
using BioPtr = std::unique_ptr<BIO, OpenSslRelease>;
using BignumPtr = std::unique_ptr<BIGNUM, OpenSslRelease>;
using CipherContextPtr = std::unique_ptr<EVP_CIPHER_CTX, OpenSslRelease>;
using KeyPtr = std::unique_ptr<EVP_PKEY, OpenSslRelease>;
using KeyContextPtr = std::unique_ptr<EVP_PKEY_CTX, OpenSslRelease>;
using CertificatePtr = std::unique_ptr<X509, OpenSslRelease>;
using ExtensionPtr = std::unique_ptr<X509_EXTENSION, OpenSslRelease>;

// Bytes are kept in std::string; OpenSSL takes unsigned characters.
inline unsigned char* Octets(char* bytes) {
    return reinterpret_cast<unsigned char*>(bytes);
}
inline const unsigned char* Octets(const char* bytes) {
    return reinterpret_cast<const unsigned char*>(bytes);
}

// Throws std::runtime_error with what was tried and OpenSSL's own reason unless the step succeeded.
inline void RequireOpenSsl(bool succeeded, const char* step) {
    if (!succeeded) {
        char reason[256] = "no reason given";
        if (const auto code = ERR_get_error()) {
            ERR_error_string_n(code, reason, sizeof(reason));
        }
        throw std::runtime_error(std::string(step) + " failed: " + reason);
    }
}

}  // namespace sandbox
