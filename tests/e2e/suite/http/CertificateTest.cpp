#include "HttpCall.h"
#include "SandboxSession.h"

using HttpCertificate = SandboxSession;

TEST_F(HttpCertificate, CertificateFaultsHaveTheirOwnCodesAndTexts) {
    const std::filesystem::path otherAuthority = m_folder / "other.pem";
    SandboxServer wrongName(L"--tls-name wrong.example --ca-file \"" + otherAuthority.wstring() + L"\"");
    const std::filesystem::path oldAuthority = m_folder / "old.pem";
    SandboxServer oldTls(L"--tls-max 1.1 --ca-file \"" + oldAuthority.wstring() + L"\"");
    const std::filesystem::path empty = m_folder / "empty.pem";
    WriteFile(empty, "no certificate\n");
    const std::filesystem::path damaged = m_folder / "damaged.pem";
    WriteFile(damaged,
              ReadFile(m_folder / "authority.pem") + "-----BEGIN CERTIFICATE-----\nMIIB\n-----END CERTIFICATE-----\n");
    // They begin alike, so that a connection made under the one may seem to fit the other.
    const std::filesystem::path rightBehindAnother = m_folder / "right-behind.pem";
    WriteFile(rightBehindAnother, ReadFile(otherAuthority) + ReadFile(m_folder / "authority.pem"));
    const std::filesystem::path twoOthers = m_folder / "two-others.pem";
    WriteFile(twoOthers, ReadFile(otherAuthority) + ReadFile(oldAuthority));
    const struct {
        const char* name;
        std::filesystem::path authority;
        std::string base;
        int code;
    } rows[] = {
        {"right", m_folder / "authority.pem", m_sandbox.m_https, 200},
        {"right behind another", rightBehindAnother, m_sandbox.m_https, 200},
        {"two others", twoOthers, m_sandbox.m_https, kHttpCertificateUntrusted},
        {"another authority", otherAuthority, m_sandbox.m_https, kHttpCertificateUntrusted},
        {"wrong name", otherAuthority, wrongName.m_https, kHttpCertificateWrongName},
        {"TLS 1.1 at most", oldAuthority, oldTls.m_https, kHttpTlsFailed},
        {"no such file", m_folder / "absent.pem", m_sandbox.m_https, kHttpCertificateFileInvalid},
        {"file without certificate", empty, m_sandbox.m_https, kHttpCertificateFileInvalid},
        {"one of its certificates damaged", damaged, m_sandbox.m_https, kHttpCertificateFileInvalid},
        {"no TLS there", m_folder / "authority.pem", "https" + m_sandbox.m_http.substr(4), kHttpTlsFailed},
    };
    for (const auto& row : rows) {
        CurlHttpLibContext::SetDefaultCertPath(row.authority.wstring());
        HttpCall call(Wide(row.base + "/routing/v1/remote"));
        EXPECT_EQ(call.Send(20), row.code) << row.name;
        ASSERT_EQ(call.errors.size(), row.code < 0 ? 1U : 0U) << row.name;
        EXPECT_TRUE(row.code == 200 || call.errors[0].find(L"127.0.0.1") != std::wstring::npos) << row.name;
    }
}
