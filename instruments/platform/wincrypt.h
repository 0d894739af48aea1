#pragma once

#include <windows.h>

// ---- Random numbers (Security.cpp)
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

// ---- Certificate stores and chains of a machine that trusts nobody: every chain ends at a root that is not trusted.
// Like the platform: what is no certificate is not added. Unlike it: of a certificate the frame alone is looked at.
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
// A store in memory is its own and only content.
inline HCERTSTORE CertOpenStore(const char*, DWORD, HCRYPTPROV, DWORD, const void*) {
    return new char;
}
inline BOOL CertCloseStore(HCERTSTORE store, DWORD) {
    delete static_cast<char*>(store);
    return TRUE;
}
inline BOOL CertAddEncodedCertificateToStore(HCERTSTORE, DWORD, const BYTE* bytes, DWORD length, DWORD,
                                             PCCERT_CONTEXT* added) {
    // A sequence with a length of two bytes, which is all that lies there.
    const bool isFrame = length > 3 && bytes[0] == 0x30 && bytes[1] == 0x82 && bytes[2] * 256U + bytes[3] + 4 == length;
    *added = isFrame ? new CERT_CONTEXT : nullptr;
    return isFrame;
}
inline BOOL CertFreeCertificateContext(PCCERT_CONTEXT certificate) {
    delete certificate;
    return TRUE;
}
inline BOOL CertGetCertificateChain(void*, PCCERT_CONTEXT, void*, HCERTSTORE, CERT_CHAIN_PARA*, DWORD, void*,
                                    PCCERT_CHAIN_CONTEXT* chain) {
    *chain = new CERT_CHAIN_CONTEXT{{CERT_TRUST_IS_UNTRUSTED_ROOT | CERT_TRUST_REVOCATION_STATUS_UNKNOWN}};
    return TRUE;
}
inline void CertFreeCertificateChain(PCCERT_CHAIN_CONTEXT chain) {
    delete chain;
}
// Nobody asks: such a chain is refused before.
inline BOOL CertVerifyCertificateChainPolicy(const char*, PCCERT_CHAIN_CONTEXT, CERT_CHAIN_POLICY_PARA*,
                                             CERT_CHAIN_POLICY_STATUS*) {
    return FALSE;
}
