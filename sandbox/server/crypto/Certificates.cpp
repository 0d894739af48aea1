#include "crypto/Certificates.h"

#include <openssl/bn.h>
#include <openssl/pem.h>

#include "crypto/P256Key.h"

namespace sandbox {
namespace {

constexpr long kValidBeforeSeconds = 60 * 60;
constexpr long kValidSeconds = 30L * 24 * 60 * 60;
constexpr int kSerialBits = 127;  // positive in 16 bytes
constexpr long kX509Version3 = 2;
constexpr std::size_t kLongestHostName = 253;

struct ExtensionText {
    int nid;
    std::string value;  // in OpenSSL's configuration syntax
};

void SetRandomSerial(X509* certificate) {
    const BignumPtr serial(BN_new());
    RequireOpenSsl(serial != nullptr && BN_rand(serial.get(), kSerialBits, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ANY) == 1 &&
                       BN_to_ASN1_INTEGER(serial.get(), X509_get_serialNumber(certificate)) != nullptr,
                   "numbering a certificate");
}

void SetCommonName(X509* certificate, const std::string& commonName) {
    // An X.520 common name holds 64 characters; clients look at the alternative name only.
    const auto shortened = commonName.substr(0, 64);
    RequireOpenSsl(X509_NAME_add_entry_by_NID(X509_get_subject_name(certificate), NID_commonName, MBSTRING_UTF8,
                                              Octets(shortened.data()), static_cast<int>(shortened.size()), -1, 0) == 1,
                   "naming a certificate");
}

void AddExtension(X509* certificate, X509* issuer, const ExtensionText& text) {
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const ExtensionPtr extension(X509V3_EXT_nconf_nid(nullptr, &context, text.nid, text.value.c_str()));
    RequireOpenSsl(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1,
                   "adding a certificate extension");
}

// A certificate for subjectKey, signed with issuerKey; without an issuer it is its own.
CertificatePtr NewCertificate(const std::string& commonName, EVP_PKEY* subjectKey, X509* issuer, EVP_PKEY* issuerKey,
                              std::initializer_list<ExtensionText> extensions) {
    CertificatePtr certificate(X509_new());
    RequireOpenSsl(certificate != nullptr && X509_set_version(certificate.get(), kX509Version3) == 1,
                   "making a certificate");
    SetRandomSerial(certificate.get());
    SetCommonName(certificate.get(), commonName);
    X509* signer = issuer != nullptr ? issuer : certificate.get();
    RequireOpenSsl(X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -kValidBeforeSeconds) != nullptr &&
                       X509_gmtime_adj(X509_getm_notAfter(certificate.get()), kValidSeconds) != nullptr &&
                       X509_set_pubkey(certificate.get(), subjectKey) == 1 &&
                       X509_set_issuer_name(certificate.get(), X509_get_subject_name(signer)) == 1,
                   "filling a certificate");
    for (const auto& extension : extensions) {
        AddExtension(certificate.get(), signer, extension);
    }
    RequireOpenSsl(X509_sign(certificate.get(), issuerKey, EVP_sha256()) > 0, "signing a certificate");
    return certificate;
}

bool IsIpAddress(const std::string& name) {
    ASN1_OCTET_STRING* address = a2i_IPADDRESS(name.c_str());
    ASN1_OCTET_STRING_free(address);
    ERR_clear_error();
    return address != nullptr;
}

// The subject alternative name in configuration syntax, in which a comma would begin another name.
std::string AlternativeName(const std::string& name) {
    constexpr const char* kHostNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-.*";
    if (IsIpAddress(name)) {
        return "IP:" + name;
    }
    if (name.empty() || name.size() > kLongestHostName ||
        name.find_first_not_of(kHostNameCharacters) != std::string::npos) {
        throw std::runtime_error("\"" + name + "\" is neither a host name nor an IP address");
    }
    return "DNS:" + name;
}

std::string ToPem(X509* certificate) {
    const BioPtr memory(BIO_new(BIO_s_mem()));
    RequireOpenSsl(memory != nullptr && PEM_write_bio_X509(memory.get(), certificate) == 1, "writing a certificate");
    std::string text(BIO_ctrl_pending(memory.get()), '\0');
    RequireOpenSsl(BIO_read(memory.get(), text.data(), static_cast<int>(text.size())) == static_cast<int>(text.size()),
                   "reading a certificate's text");
    return text;
}

}  // namespace

ServerIdentity MakeServerIdentity(const std::string& name) {
    const auto alternativeName = AlternativeName(name);
    const auto authorityKey = NewP256Key();
    const auto authority = NewCertificate("Sandbox Authority", authorityKey.get(), nullptr, authorityKey.get(),
                                          {{NID_basic_constraints, "critical,CA:TRUE,pathlen:0"},
                                           {NID_key_usage, "critical,keyCertSign,cRLSign"},
                                           {NID_subject_key_identifier, "hash"}});
    ServerIdentity identity;
    identity.key = NewP256Key();
    identity.certificate = NewCertificate(name, identity.key.get(), authority.get(), authorityKey.get(),
                                          {{NID_basic_constraints, "critical,CA:FALSE"},
                                           {NID_key_usage, "critical,digitalSignature"},
                                           {NID_ext_key_usage, "serverAuth"},
                                           {NID_subject_key_identifier, "hash"},
                                           {NID_authority_key_identifier, "keyid:always"},
                                           {NID_subject_alt_name, alternativeName}});
    identity.authorityPem = ToPem(authority.get());
    return identity;
}

}  // namespace sandbox
