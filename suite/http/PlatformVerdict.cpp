// The chain parameters with their time limit.
#define CERT_CHAIN_PARA_HAS_EXTRA_FIELDS

#include "PlatformVerdict.h"

#include <windows.h>

#include <wincrypt.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <type_traits>

// Behind wincrypt.h, which defines macros of the same names as OpenSSL's types.
#include <openssl/x509_vfy.h>

#include "Utf8Text.h"

namespace suite {
namespace {

constexpr DWORD kFetchMilliseconds = 5000;
constexpr DWORD kRevocationUnknown = CERT_TRUST_REVOCATION_STATUS_UNKNOWN | CERT_TRUST_IS_OFFLINE_REVOCATION;
constexpr DWORD kIgnoreRevocation = 0x80;  // SECURITY_FLAG_IGNORE_REVOCATION of wininet.h

struct StoreDeleter {
    void operator()(void* store) const { CertCloseStore(store, 0); }
};
struct CertificateDeleter {
    void operator()(const CERT_CONTEXT* certificate) const { CertFreeCertificateContext(certificate); }
};
struct ChainDeleter {
    void operator()(const CERT_CHAIN_CONTEXT* chain) const { CertFreeCertificateChain(chain); }
};
using Store = std::unique_ptr<std::remove_pointer_t<HCERTSTORE>, StoreDeleter>;
using Certificate = std::unique_ptr<const CERT_CONTEXT, CertificateDeleter>;
using Chain = std::unique_ptr<const CERT_CHAIN_CONTEXT, ChainDeleter>;

Certificate AddTo(HCERTSTORE store, const CertificateBytes& bytes) {
    PCCERT_CONTEXT added = nullptr;
    CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, bytes.data(), static_cast<DWORD>(bytes.size()),
                                     CERT_STORE_ADD_ALWAYS, &added);
    return Certificate(added);
}

// Revocation is judged by what Windows has at hand: the lists that it cached and its own list of refused certificates.
// Nothing is fetched for it, and a status that is not known counts as good, as with most clients.
Chain BuildChain(PCCERT_CONTEXT server, HCERTSTORE others) {
    char serverAuthentication[] = szOID_PKIX_KP_SERVER_AUTH;
    LPSTR usages[] = {serverAuthentication};
    CERT_CHAIN_PARA parameters = {};
    parameters.cbSize = sizeof parameters;
    parameters.RequestedUsage.dwType = USAGE_MATCH_TYPE_AND;
    parameters.RequestedUsage.Usage.cUsageIdentifier = 1;
    parameters.RequestedUsage.Usage.rgpszUsageIdentifier = usages;
    parameters.dwUrlRetrievalTimeout = kFetchMilliseconds;
    PCCERT_CHAIN_CONTEXT chain = nullptr;
    CertGetCertificateChain(nullptr, server, nullptr, others, &parameters,
                            CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT | CERT_CHAIN_REVOCATION_CHECK_CACHE_ONLY,
                            nullptr, &chain);
    return Chain(chain);
}

// What else the system's rules for TLS say, the name among it; 0 when nothing. Revocation is left out: a chain with a
// revoked certificate has been refused before.
DWORD PolicyError(PCCERT_CHAIN_CONTEXT chain, std::wstring serverName) {
    SSL_EXTRA_CERT_CHAIN_POLICY_PARA tls = {};
    tls.cbSize = sizeof tls;
    tls.dwAuthType = AUTHTYPE_SERVER;
    tls.fdwChecks = kIgnoreRevocation;
    tls.pwszServerName = serverName.empty() ? nullptr : serverName.data();
    CERT_CHAIN_POLICY_PARA parameters = {};
    parameters.cbSize = sizeof parameters;
    parameters.dwFlags = CERT_CHAIN_POLICY_IGNORE_ALL_REV_UNKNOWN_FLAGS;
    parameters.pvExtraPolicyPara = &tls;
    CERT_CHAIN_POLICY_STATUS status = {};
    status.cbSize = sizeof status;
    const BOOL judged = CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, chain, &parameters, &status);
    return judged != FALSE ? status.dwError : static_cast<DWORD>(E_FAIL);
}

// What stands in the chain's trust status, worst first. Every fault refuses, one that the policy for TLS passes too.
int ErrorOfFaults(DWORD faults) {
    const struct {
        DWORD bits;
        int error;
    } rows[] = {
        {CERT_TRUST_IS_EXPLICIT_DISTRUST, X509_V_ERR_CERT_REJECTED},
        {CERT_TRUST_IS_REVOKED, X509_V_ERR_CERT_REVOKED},
        {CERT_TRUST_IS_NOT_SIGNATURE_VALID, X509_V_ERR_CERT_SIGNATURE_FAILURE},
        {CERT_TRUST_IS_UNTRUSTED_ROOT | CERT_TRUST_IS_PARTIAL_CHAIN | CERT_TRUST_IS_CYCLIC,
         X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY},
        {CERT_TRUST_IS_NOT_TIME_VALID, X509_V_ERR_CERT_HAS_EXPIRED},
        {CERT_TRUST_IS_NOT_VALID_FOR_USAGE, X509_V_ERR_INVALID_PURPOSE},
        {CERT_TRUST_HAS_NOT_SUPPORTED_CRITICAL_EXT, X509_V_ERR_UNHANDLED_CRITICAL_EXTENSION},
        {~kRevocationUnknown, X509_V_ERR_CERT_UNTRUSTED},
    };
    const auto* const found =
        std::find_if(std::begin(rows), std::end(rows), [faults](const auto& row) { return (faults & row.bits) != 0; });
    return found != std::end(rows) ? found->error : X509_V_OK;
}

int ErrorOfPolicy(DWORD policyError) {
    switch (static_cast<HRESULT>(policyError)) {
        case S_OK:
            return X509_V_OK;
        case CERT_E_CN_NO_MATCH:
            return X509_V_ERR_HOSTNAME_MISMATCH;
        case TRUST_E_EXPLICIT_DISTRUST:
            return X509_V_ERR_CERT_REJECTED;
        default:
            return X509_V_ERR_CERT_UNTRUSTED;
    }
}

}  // namespace

int PlatformVerdict(const std::vector<CertificateBytes>& chain, const std::string& serverName) {
    const Store others(CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, CERT_STORE_CREATE_NEW_FLAG, nullptr));
    if (!others || chain.empty()) {
        return X509_V_ERR_OUT_OF_MEM;
    }
    const Certificate server = AddTo(others.get(), chain.front());
    if (!server) {
        return X509_V_ERR_CERT_UNTRUSTED;
    }
    for (std::size_t i = 1; i < chain.size(); ++i) {
        AddTo(others.get(), chain[i]);  // one that Windows cannot read is no issuer of anything
    }
    const Chain built = BuildChain(server.get(), others.get());
    if (!built) {
        return X509_V_ERR_CERT_UNTRUSTED;
    }
    const int error = ErrorOfFaults(built->TrustStatus.dwErrorStatus);
    return error != X509_V_OK ? error : ErrorOfPolicy(PolicyError(built.get(), WideFromUtf8(serverName)));
}

}  // namespace suite
