#pragma once

#include <windows.h>

using HCRYPTPROV = ULONG_PTR;
constexpr DWORD PROV_RSA_FULL = 1, CRYPT_NEWKEYSET = 8;
constexpr HRESULT NTE_BAD_KEYSET = static_cast<HRESULT>(0x80090016);
struct DATA_BLOB {
    DWORD cbData;
    BYTE* pbData;
};
BOOL CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR container, LPCWSTR providerName, DWORD type, DWORD flags);
BOOL CryptGenRandom(HCRYPTPROV provider, DWORD bytes, BYTE* buffer);
BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD flags);

// ---- Certificates (Certificates.cpp)
#define szOID_PKIX_KP_SERVER_AUTH "1.3.6.1.5.5.7.3.1"
#define CERT_STORE_PROV_MEMORY (reinterpret_cast<const char*>(2))
#define CERT_CHAIN_POLICY_SSL (reinterpret_cast<const char*>(4))
using HCERTSTORE = void*;
constexpr DWORD CERT_STORE_CREATE_NEW_FLAG = 0x2000, X509_ASN_ENCODING = 1, CERT_STORE_ADD_ALWAYS = 4,
                USAGE_MATCH_TYPE_AND = 0, AUTHTYPE_SERVER = 2, CERT_CHAIN_POLICY_IGNORE_ALL_REV_UNKNOWN_FLAGS = 0xF00,
                CERT_CHAIN_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT = 0x40000000,
                CERT_CHAIN_REVOCATION_CHECK_CACHE_ONLY = 0x80000000;
constexpr DWORD CERT_TRUST_IS_NOT_TIME_VALID = 1, CERT_TRUST_IS_REVOKED = 4, CERT_TRUST_IS_NOT_SIGNATURE_VALID = 8,
                CERT_TRUST_IS_NOT_VALID_FOR_USAGE = 0x10, CERT_TRUST_IS_UNTRUSTED_ROOT = 0x20,
                CERT_TRUST_REVOCATION_STATUS_UNKNOWN = 0x40, CERT_TRUST_IS_CYCLIC = 0x80,
                CERT_TRUST_IS_PARTIAL_CHAIN = 0x10000, CERT_TRUST_IS_OFFLINE_REVOCATION = 0x1000000,
                CERT_TRUST_IS_EXPLICIT_DISTRUST = 0x4000000, CERT_TRUST_HAS_NOT_SUPPORTED_CRITICAL_EXT = 0x8000000;
constexpr HRESULT CERT_E_CN_NO_MATCH = static_cast<HRESULT>(0x800B010F),
                  TRUST_E_EXPLICIT_DISTRUST = static_cast<HRESULT>(0x800B0111);
struct CERT_CONTEXT {};
using PCCERT_CONTEXT = const CERT_CONTEXT*;
struct CERT_CHAIN_CONTEXT {
    struct {
        DWORD dwErrorStatus;
    } TrustStatus;
};
using PCCERT_CHAIN_CONTEXT = const CERT_CHAIN_CONTEXT*;
struct CERT_CHAIN_PARA {
    DWORD cbSize, dwUrlRetrievalTimeout;
    struct {
        DWORD dwType;
        struct {
            DWORD cUsageIdentifier;
            LPSTR* rgpszUsageIdentifier;
        } Usage;
    } RequestedUsage;
};
struct SSL_EXTRA_CERT_CHAIN_POLICY_PARA {
    DWORD cbSize, dwAuthType, fdwChecks;
    LPWSTR pwszServerName;
};
struct CERT_CHAIN_POLICY_PARA {
    DWORD cbSize, dwFlags;
    void* pvExtraPolicyPara;
};
struct CERT_CHAIN_POLICY_STATUS {
    DWORD cbSize, dwError;
};
HCERTSTORE CertOpenStore(const char* provider, DWORD encoding, HCRYPTPROV, DWORD flags, const void* parameter);
BOOL CertCloseStore(HCERTSTORE store, DWORD flags);
BOOL CertAddEncodedCertificateToStore(HCERTSTORE store, DWORD encoding, const BYTE* bytes, DWORD length,
                                      DWORD disposition, PCCERT_CONTEXT* added);
BOOL CertFreeCertificateContext(PCCERT_CONTEXT certificate);
BOOL CertGetCertificateChain(void* engine, PCCERT_CONTEXT certificate, void* time, HCERTSTORE others,
                             CERT_CHAIN_PARA* parameters, DWORD flags, void* reserved, PCCERT_CHAIN_CONTEXT* chain);
void CertFreeCertificateChain(PCCERT_CHAIN_CONTEXT chain);
BOOL CertVerifyCertificateChainPolicy(const char* policy, PCCERT_CHAIN_CONTEXT chain, CERT_CHAIN_POLICY_PARA*,
                                      CERT_CHAIN_POLICY_STATUS* status);
