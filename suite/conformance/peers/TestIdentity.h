#pragma once

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using TestKey = std::shared_ptr<EVP_PKEY>;

inline TestKey NewEcKey() {
    return {EVP_EC_gen("P-256"), &EVP_PKEY_free};
}
inline TestKey NewRsaKey() {
    return {EVP_RSA_gen(2048), &EVP_PKEY_free};
}

// What one of OpenSSL's PEM_write_bio functions writes.
template <typename Write>
std::string PemText(Write write) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    write(memory.get());
    std::string text(BIO_ctrl_pending(memory.get()), '\0');
    BIO_read(memory.get(), text.data(), static_cast<int>(text.size()));
    return text;
}

// A certificate and its key, signed by the authority or, without one, by itself.
struct TestIdentity {
    using Extensions = std::vector<std::pair<int, std::string>>;  // in OpenSSL's notation

    explicit TestIdentity(const std::string& name, const Extensions& extensions,
                          const TestIdentity* authority = nullptr, long beginsInSeconds = -60,
                          long endsInSeconds = 3600, TestKey ownKey = NewEcKey())
        : key(std::move(ownKey)) {
        static long serial = 0;
        X509* const x509 = certificate.get();
        X509_set_version(x509, 2);
        ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
        X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
        X509_set_issuer_name(x509, X509_get_subject_name(authority != nullptr ? authority->certificate.get() : x509));
        X509_gmtime_adj(X509_getm_notBefore(x509), beginsInSeconds);
        X509_gmtime_adj(X509_getm_notAfter(x509), endsInSeconds);
        X509_set_pubkey(x509, key.get());
        for (const auto& [nid, value] : extensions) {
            const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
                X509V3_EXT_conf_nid(nullptr, nullptr, nid, value.c_str()), &X509_EXTENSION_free);
            X509_add_ext(x509, extension.get(), -1);
        }
        do {
            X509_sign(x509, authority != nullptr ? authority->key.get() : key.get(), EVP_sha256());
        } while (SignatureHasShortNumber());
    }

    std::vector<unsigned char> Der() const {
        std::vector<unsigned char> bytes(static_cast<std::size_t>(i2d_X509(certificate.get(), nullptr)));
        unsigned char* end = bytes.data();
        i2d_X509(certificate.get(), &end);
        return bytes;
    }

    std::string Pem() const {
        return PemText([this](BIO* text) { PEM_write_bio_X509(text, certificate.get()); });
    }

    // Wine takes an ECDSA signature for wrong when one of its numbers has fewer bytes than the curve: one in 128 has.
    bool SignatureHasShortNumber() const {
        const ASN1_BIT_STRING* signature = nullptr;
        X509_get0_signature(&signature, nullptr, certificate.get());
        const unsigned char* bytes = signature->data;
        if (X509_get_signature_nid(certificate.get()) != NID_ecdsa_with_SHA256) {
            return false;
        }
        const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> numbers(
            d2i_ECDSA_SIG(nullptr, &bytes, signature->length), &ECDSA_SIG_free);
        return numbers != nullptr && (BN_num_bytes(ECDSA_SIG_get0_r(numbers.get())) < 32 ||
                                      BN_num_bytes(ECDSA_SIG_get0_s(numbers.get())) < 32);
    }

    std::shared_ptr<X509> certificate{X509_new(), &X509_free};
    TestKey key;
};
