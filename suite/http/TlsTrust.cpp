#include "TlsTrust.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <string_view>

#include "CurlHandlePool.h"
#include "PlatformVerdict.h"

namespace suite {
namespace {

struct NamesDeleter {
    void operator()(GENERAL_NAMES* names) const { GENERAL_NAMES_free(names); }
};

using HostNames = std::unique_ptr<GENERAL_NAMES, NamesDeleter>;

// Null when there are none, or no memory to read them.
HostNames NamesOf(const X509* certificate) {
    return HostNames(
        static_cast<GENERAL_NAMES*>(X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)));
}

std::string_view WithoutDotAtEnd(std::string_view name) {
    return !name.empty() && name.back() == '.' ? name.substr(0, name.size() - 1) : name;
}

bool SameName(std::string_view one, std::string_view other) {
    return one.size() == other.size() && curl_strnequal(one.data(), other.data(), one.size()) != 0;
}

// By libcurl's rule. OpenSSL's knows no label with an underscore behind or beside a star, and no dot at the end.
bool Matches(std::string_view pattern, std::string_view host) {
    pattern = WithoutDotAtEnd(pattern);
    host = WithoutDotAtEnd(host);
    const std::size_t firstDot = host.find('.');
    const bool isWildcard = pattern.substr(0, 2) == "*." && pattern.find('.', 2) != std::string_view::npos;
    return SameName(pattern, host) ||
           (isWildcard && firstDot != std::string_view::npos && SameName(pattern.substr(1), host.substr(firstDot)));
}

// Without a host an address is asked for. Which one is judged when the handshake is over: see RefuseOtherAddress.
bool IsFor(const GENERAL_NAME* name, std::string_view host) {
    if (host.empty()) {
        return name->type == GEN_IPADD || name->type == GEN_DNS;
    }
    return name->type == GEN_DNS && Matches({reinterpret_cast<const char*>(ASN1_STRING_get0_data(name->d.dNSName)),
                                             static_cast<std::size_t>(ASN1_STRING_length(name->d.dNSName))},
                                            host);
}

CertificateBytes BytesOf(const X509* certificate) {
    CertificateBytes bytes(static_cast<std::size_t>(std::max(i2d_X509(certificate, nullptr), 0)));
    unsigned char* end = bytes.data();
    i2d_X509(certificate, &end);
    return bytes;
}

// The server's certificate, then what it sent besides, itself once more among it.
std::vector<CertificateBytes> SentChain(X509_STORE_CTX* context) {
    std::vector<CertificateBytes> chain = {BytesOf(X509_STORE_CTX_get0_cert(context))};
    const STACK_OF(X509)* const sent = X509_STORE_CTX_get0_untrusted(context);
    for (int i = 0; i < sk_X509_num(sent); ++i) {
        chain.push_back(BytesOf(sk_X509_value(sent, i)));
    }
    return chain;
}

// The name that the handshake asks for: of the proxy in a handshake with a proxy. An address is never asked for.
const char* ServerName(X509_STORE_CTX* context) {
    const void* const tls = X509_STORE_CTX_get_ex_data(context, SSL_get_ex_data_X509_STORE_CTX_idx());
    const char* const name = SSL_get_servername(static_cast<const SSL*>(tls), TLSEXT_NAMETYPE_host_name);
    return name != nullptr ? name : "";
}

// libcurl checks the name too, but falls back to the subject's common name, which RFC 9525 retired, where a certificate
// names no host, and where there is no memory to read the names.
bool NamesTheHost(X509_STORE_CTX* context) {
    const HostNames names = NamesOf(X509_STORE_CTX_get0_cert(context));
    const std::string_view host = ServerName(context);
    for (int i = 0; i < sk_GENERAL_NAME_num(names.get()); ++i) {
        if (IsFor(sk_GENERAL_NAME_value(names.get(), i), host)) {
            return true;
        }
    }
    return false;
}

int JudgedByPlatform(X509_STORE_CTX* context, X509_STORE*) {
    X509* const certificate = X509_STORE_CTX_get0_cert(context);
    if (X509_cmp_current_time(X509_get0_notBefore(certificate)) > 0) {
        return X509_V_ERR_CERT_NOT_YET_VALID;  // for Windows it is the same as expired
    }
    return PlatformVerdict(SentChain(context), ServerName(context));
}

struct CertificateDeleter {
    void operator()(X509* certificate) const { X509_free(certificate); }
};

// Asked when the connection is there, before a request is sent over it. Who asks for an address is not told by the
// handshake, and of libcurl's own check the same is true as of a name's.
int RefuseOtherAddress(void* handle, char*, char*, int, int) {
    const char* address = nullptr;
    curl_tlssessioninfo* tls = nullptr;
    curl_easy_getinfo(static_cast<CURL*>(handle), CURLINFO_PRIVATE, &address);
    curl_easy_getinfo(static_cast<CURL*>(handle), CURLINFO_TLS_SSL_PTR, &tls);
    if (address == nullptr || tls == nullptr || tls->internals == nullptr) {
        return CURL_PREREQFUNC_ABORT;
    }
    const std::unique_ptr<X509, CertificateDeleter> certificate(
        SSL_get_peer_certificate(static_cast<const SSL*>(tls->internals)));
    return certificate && X509_check_ip_asc(certificate.get(), address, 0) == 1 ? CURL_PREREQFUNC_OK
                                                                                : CURL_PREREQFUNC_ABORT;
}

struct VerificationDeleter {
    void operator()(X509_STORE_CTX* verification) const { X509_STORE_CTX_free(verification); }
};

// OpenSSL's own verification with all that libcurl and the handshake set for it, but with these authorities.
int JudgedByAuthorities(X509_STORE_CTX* context, X509_STORE* authorities) {
    if (authorities == nullptr) {
        return X509_verify_cert(context) == 1 ? X509_V_OK : X509_STORE_CTX_get_error(context);
    }
    const std::unique_ptr<X509_STORE_CTX, VerificationDeleter> verification(X509_STORE_CTX_new());
    if (!verification ||
        X509_STORE_CTX_init(verification.get(), authorities, X509_STORE_CTX_get0_cert(context),
                            X509_STORE_CTX_get0_untrusted(context)) != 1 ||
        X509_VERIFY_PARAM_set1(X509_STORE_CTX_get0_param(verification.get()), X509_STORE_CTX_get0_param(context)) !=
            1) {
        return X509_V_ERR_OUT_OF_MEM;
    }
    return X509_verify_cert(verification.get()) == 1 ? X509_V_OK : X509_STORE_CTX_get_error(verification.get());
}

// OpenSSL calls these instead of its own verification. The error becomes CURLINFO_SSL_VERIFYRESULT and libcurl's text.
// What else the verification leaves on the thread's queue of errors, such as a signature that does not fit, goes: by
// the first one there libcurl tells a certificate that is refused from a handshake that breaks. No exception may pass
// through OpenSSL.
template <int (*Judge)(X509_STORE_CTX*, X509_STORE*)>
int Verify(X509_STORE_CTX* context, void* authorities) noexcept {
    int error = X509_V_ERR_OUT_OF_MEM;
    ERR_set_mark();
    try {
        error = Judge(context, static_cast<X509_STORE*>(authorities));
    } catch (const std::exception&) {
    }
    if (error == X509_V_OK && !NamesTheHost(context)) {
        error = X509_V_ERR_HOSTNAME_MISMATCH;
    }
    ERR_pop_to_mark();
    X509_STORE_CTX_set_error(context, error);
    return error == X509_V_OK ? 1 : 0;
}

void FreeAuthorities(void*, void* authorities, CRYPTO_EX_DATA*, int, long, void*) {
    X509_STORE_free(static_cast<X509_STORE*>(authorities));
}

// A kept connection may verify once more when its request has long ended: it holds a reference of its own.
bool HoldAuthorities(SSL_CTX* tls, X509_STORE* authorities) {
    static std::atomic<int> place{-1};  // of the context's data; asked for again when there was no memory
    if (authorities == nullptr) {
        return true;
    }
    if (place < 0) {
        place = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, &FreeAuthorities);
    }
    if (place < 0 || X509_STORE_up_ref(authorities) != 1) {
        return false;
    }
    if (SSL_CTX_set_ex_data(tls, place, authorities) != 1) {
        X509_STORE_free(authorities);
        return false;
    }
    return true;
}

template <int (*Judge)(X509_STORE_CTX*, X509_STORE*)>
CURLcode PrepareConnection(CURL*, void* context, void* authorities) noexcept {
    auto* const tls = static_cast<SSL_CTX*>(context);
    if (!HoldAuthorities(tls, static_cast<X509_STORE*>(authorities))) {
        return CURLE_OUT_OF_MEMORY;
    }
    SSL_CTX_set_cert_verify_callback(tls, &Verify<Judge>, authorities);
    // libcurl would write the session's secrets to the file that SSLKEYLOGFILE names.
    SSL_CTX_set_keylog_callback(tls, nullptr);
    return CURLE_OK;
}

}  // namespace

// libcurl compares the authorities before it takes up a kept connection or TLS session, having none among them, so one
// made under other authorities or under Windows' verdict is never used here. It does not compare the functions: they
// follow from the authorities alone, and judge a proxy's certificate too, so the proxy's authorities are the same.
void SetTlsOptions(CURL* handle, const Authorities& authorities, const std::string& address) {
    SetCurlOption(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    SetCurlOption(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    SetCurlOption(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    SetCurlOption(handle, CURLOPT_PROXY_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    SetCurlOption(handle, CURLOPT_CAINFO, static_cast<const char*>(nullptr));
    SetCurlOption(handle, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    if (!address.empty()) {
        SetCurlOption(handle, CURLOPT_PRIVATE, address.c_str());
        SetCurlOption(handle, CURLOPT_PREREQDATA, handle);
        SetCurlOption(handle, CURLOPT_PREREQFUNCTION, &RefuseOtherAddress);
    }
    if (authorities.pem.empty()) {
        SetCurlOption(handle, CURLOPT_SSL_CTX_FUNCTION, &PrepareConnection<JudgedByPlatform>);
        return;
    }
    // Read only; libcurl's connections and sessions keep copies of their own.
    curl_blob blob = {const_cast<char*>(authorities.pem.data()), authorities.pem.size(), CURL_BLOB_NOCOPY};
    SetCurlOption(handle, CURLOPT_CAINFO_BLOB, &blob);
    SetCurlOption(handle, CURLOPT_PROXY_CAINFO_BLOB, &blob);
    SetCurlOption(handle, CURLOPT_SSL_CTX_FUNCTION, &PrepareConnection<JudgedByAuthorities>);
    SetCurlOption(handle, CURLOPT_SSL_CTX_DATA, authorities.certificates.get());
}

}  // namespace suite
