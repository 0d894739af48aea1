// Certificate stores and chains of a machine that trusts nobody: every chain ends at a root that is not trusted. Like
// the platform: what is no certificate is not added. Unlike it: of a certificate the frame alone is looked at.

#include <wincrypt.h>

#include "Handles.h"

// A store in memory is its own and only content.
HCERTSTORE CertOpenStore(const char*, DWORD, HCRYPTPROV, DWORD, const void*) {
    return new char;
}

BOOL CertCloseStore(HCERTSTORE store, DWORD) {
    delete static_cast<char*>(store);
    return TRUE;
}

BOOL CertAddEncodedCertificateToStore(HCERTSTORE, DWORD, const BYTE* bytes, DWORD length, DWORD,
                                      PCCERT_CONTEXT* added) {
    constexpr DWORD kBadTag = 0x8009310B;
    // A sequence with a length of two bytes, which is all that lies there.
    if (length < 4 || bytes[0] != 0x30 || bytes[1] != 0x82 || bytes[2] * 256U + bytes[3] + 4 != length) {
        return Refuse(kBadTag);
    }
    *added = new CERT_CONTEXT;
    return TRUE;
}

BOOL CertFreeCertificateContext(PCCERT_CONTEXT certificate) {
    delete certificate;
    return TRUE;
}

BOOL CertGetCertificateChain(void*, PCCERT_CONTEXT, void*, HCERTSTORE, CERT_CHAIN_PARA*, DWORD, void*,
                             PCCERT_CHAIN_CONTEXT* chain) {
    *chain = new CERT_CHAIN_CONTEXT{{CERT_TRUST_IS_UNTRUSTED_ROOT | CERT_TRUST_REVOCATION_STATUS_UNKNOWN}};
    return TRUE;
}

void CertFreeCertificateChain(PCCERT_CHAIN_CONTEXT chain) {
    delete chain;
}

// Nobody asks: such a chain is refused before.
BOOL CertVerifyCertificateChainPolicy(const char*, PCCERT_CHAIN_CONTEXT, CERT_CHAIN_POLICY_PARA*,
                                      CERT_CHAIN_POLICY_STATUS*) {
    return FALSE;
}
