// Before windows.h, which brings an older sockets header.
#include "TlsPeer.h"

#include <gtest/gtest.h>

#include "HttpCall.h"
#include "TextFile.h"

namespace {

namespace fs = std::filesystem;

// A certificate with what OpenSSL calls trust: what it may be used for beside what it says itself, and what it may not.
std::string Trusted(const TestIdentity& authority, int trusted, int rejected) {
    const std::unique_ptr<X509, decltype(&X509_free)> copy(X509_dup(authority.certificate.get()), &X509_free);
    if (trusted != NID_undef) {
        X509_add1_trust_object(copy.get(), OBJ_nid2obj(trusted));
    }
    if (rejected != NID_undef) {
        X509_add1_reject_object(copy.get(), OBJ_nid2obj(rejected));
    }
    return PemText([&copy](BIO* text) { PEM_write_bio_X509_AUX(text, copy.get()); });
}

// A list of the authority's that revokes the certificate.
std::string Revoking(const TestIdentity& revoked, const TestIdentity& authority) {
    const std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)> list(X509_CRL_new(), &X509_CRL_free);
    const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> now(ASN1_TIME_adj(nullptr, time(nullptr), 0, -60),
                                                                    &ASN1_TIME_free);
    const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> next(ASN1_TIME_adj(nullptr, time(nullptr), 1, 0),
                                                                     &ASN1_TIME_free);
    X509_CRL_set_version(list.get(), 1);
    X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(authority.certificate.get()));
    X509_CRL_set1_lastUpdate(list.get(), now.get());
    X509_CRL_set1_nextUpdate(list.get(), next.get());
    X509_REVOKED* const entry = X509_REVOKED_new();
    X509_REVOKED_set_serialNumber(entry, X509_get_serialNumber(revoked.certificate.get()));
    X509_REVOKED_set_revocationDate(entry, now.get());
    X509_CRL_add0_revoked(list.get(), entry);
    X509_CRL_sign(list.get(), authority.key.get(), EVP_sha256());
    return PemText([&list](BIO* text) { PEM_write_bio_X509_CRL(text, list.get()); });
}

std::string WithCarriageReturns(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, "\r");
    }
    return text;
}

std::string InUtf16(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    for (const char c : ascii) {
        bytes += {c, '\0'};
    }
    return bytes;
}

// A server below an intermediate authority, which it sends along, and files of authorities.
class HttpAuthorityFile : public testing::Test {
protected:
    HttpAuthorityFile() { fs::create_directories(m_folder); }
    ~HttpAuthorityFile() override { fs::remove_all(m_folder); }

    fs::path File(int number) const { return m_folder / (std::to_string(number) + ".pem"); }
    // The code; of a failure with its cause, of a reply with whether a kept connection brought it.
    std::string Ask(const fs::path& file, const wchar_t* connection = L"close") const {
        HttpCall call(L"https://127.0.0.1:" + std::to_wstring(m_peer.port) + L"/", {{L"Connection", connection}});
        call.strategy.SetCertPath(file.wstring());
        const int code = call.Send(20);
        return std::to_string(code) + " " + Narrow(call.errors.empty() ? call.progress.back() : call.errors[0]);
    }

    const TestIdentity::Extensions m_ofAuthority = {{NID_basic_constraints, "critical,CA:TRUE"},
                                                    {NID_key_usage, "critical,keyCertSign,cRLSign"}};
    const TestIdentity m_root = TestIdentity("Authority", m_ofAuthority);
    const TestIdentity m_namesake = TestIdentity("Authority", m_ofAuthority);
    const TestIdentity m_other = TestIdentity("Another Authority", m_ofAuthority);
    const TestIdentity m_expired = TestIdentity("Authority", m_ofAuthority, nullptr, -60, -30, m_root.key);
    const TestIdentity m_between = TestIdentity("Intermediate", m_ofAuthority, &m_root);
    const TestIdentity m_own = TestIdentity("server", {{NID_subject_alt_name, "IP:127.0.0.1"}}, &m_between);
    const TlsPeer m_peer = TlsPeer(m_own, &m_between);
    const fs::path m_folder = fs::temp_directory_path() / ("authority-file-" + std::to_string(GetCurrentProcessId()));
};

TEST_F(HttpAuthorityFile, CountsAsAWholeWhateverStandsAroundItsCertificates) {
    const std::string root = m_root.Pem();
    const std::string other = m_namesake.Pem();
    const std::string mark = "\xEF\xBB\xBF";
    const std::string untrusted = "-5 ";
    const std::string invalid = "-8 ";
    const struct {
        const char* name;
        std::string text;
        std::string answer;  // the code, and a part of the cause
    } rows[] = {
        {"right", root, "200 "},
        {"another authority of the same name", other, untrusted},
        {"right behind another", m_other.Pem() + root, "200 "},
        {"right in front of another", root + m_other.Pem(), "200 "},
        {"lines that end in CR LF", WithCarriageReturns(root), "200 "},
        {"no line end behind the last line", root.substr(0, root.size() - 1), "200 "},
        {"text around each", "Subject: CN=x\n" + m_other.Pem() + "\nIssuer: -----\n" + root + "the end", "200 "},
        {"byte order mark", mark + root, "200 "},
        {"byte order mark in front of two", mark + root + m_other.Pem(), "200 "},
        {"text in front on the line", m_other.Pem() + "x" + root, invalid},
        {"cut in its last line", root.substr(0, root.size() - 3), invalid},
        {"cut behind its namesake", other + root.substr(0, root.size() / 2), invalid},
        {"UTF-16", InUtf16(root), invalid},
        {"joined to its namesake without a line's end", other.substr(0, other.size() - 1) + root, invalid},
        {"joined, each with a byte order mark", mark + m_other.Pem() + mark + root, "200 "},
        {"indented behind another", m_other.Pem() + " " + root, invalid},
        {"empty", "", invalid},
        {"trusted for servers", Trusted(m_root, NID_server_auth, NID_undef), "200 "},
        {"rejected for servers", Trusted(m_root, NID_undef, NID_server_auth), "-5 certificate rejected"},
        {"trusted for clients alone", Trusted(m_root, NID_client_auth, NID_undef), "-5 certificate rejected"},
        {"the intermediate alone", m_between.Pem(), "200 "},
        {"the server's own alone", m_own.Pem(), "200 "},
        {"revoked by a list beside its authority", m_between.Pem() + Revoking(m_own, m_between), "200 "},
        {"expired", m_expired.Pem(), "-5 certificate has expired"},
        {"a list alone", Revoking(m_own, m_between), invalid},
        {"as large as allowed", root + std::string(8'000'000 - root.size(), '\n'), "200 "},
        {"a byte larger", root + std::string(8'000'001 - root.size(), '\n'), invalid},
    };
    int number = 0;
    for (const auto& row : rows) {
        WriteFile(File(++number), row.text);
        const std::string answer = Ask(File(number));
        EXPECT_EQ(answer.substr(0, row.answer.find(' ') + 1), row.answer.substr(0, row.answer.find(' ') + 1))
            << row.name << ": " << answer;
        EXPECT_NE(answer.find(row.answer.substr(row.answer.find(' ') + 1)), std::string::npos)
            << row.name << ": " << answer;
    }
}

TEST_F(HttpAuthorityFile, RewrittenItCountsFromTheNextRequest) {
    const fs::path file = File(1);
    const struct {
        const char* name;
        std::string text;
        std::string answer;
        const char* connection;
    } rows[] = {
        {"right", m_root.Pem(), "200", "new connection"},
        {"the same once more", m_root.Pem(), "200", "connection reused"},
        {"another authority, while a connection is kept", m_namesake.Pem() + "\n", "-5", ""},
        {"another authority of the same length", "\n" + m_namesake.Pem(), "-5", ""},
        {"no certificate", "none\n", "-8", ""},
        {"right, and text", "x\n" + m_root.Pem(), "200", "new connection"},
        {"the first text again", m_root.Pem(), "200", ""},
    };
    for (const auto& row : rows) {
        WriteFile(file, row.text);
        for (const bool asDefault : {false, true}) {
            CurlHttpLibContext::SetDefaultCertPath(asDefault ? file.wstring() : L"");
            const std::string answer = Ask(asDefault ? fs::path() : file, L"keep-alive");
            EXPECT_EQ(answer.substr(0, answer.find(' ')), row.answer) << row.name << ": " << answer;
            EXPECT_NE(answer.find(asDefault ? "" : row.connection), std::string::npos) << row.name << ": " << answer;
        }
    }
    CurlHttpLibContext::SetDefaultCertPath(L"");
    fs::remove(file);
    EXPECT_EQ(Ask(file).substr(0, 3), "-8 ") << "removed";
    fs::create_directory(file);
    EXPECT_EQ(Ask(file).substr(0, 3), "-8 ") << "a folder in its place";
}

// More of them than are remembered, so each is read again in the second round.
TEST_F(HttpAuthorityFile, ManyInTurnEachJudgeByTheirOwn) {
    constexpr int kFiles = 7;
    for (int i = 0; i < kFiles; ++i) {
        WriteFile(File(i), (i % 2 == 0 ? m_root : m_namesake).Pem());
    }
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < kFiles; ++i) {
            EXPECT_EQ(Ask(File(i)).substr(0, 3), i % 2 == 0 ? "200" : "-5 ") << "file " << i << ", round " << round;
        }
    }
}

}  // namespace
