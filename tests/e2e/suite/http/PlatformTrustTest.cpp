// Before windows.h, which brings an older sockets header.
#include "TlsPeer.h"

#include <gtest/gtest.h>
#include <wincrypt.h>

#include <deque>
#include <map>
#include <sstream>

#include "ChildProcess.h"
#include "TextFile.h"

namespace {

namespace fs = std::filesystem;

// A root authority of the system until it is dropped, for processes that start later; null when the system takes none.
// On Windows the store is the machine's, which an administrator may fill: for the user's own store Windows would ask in
// a window.
std::shared_ptr<const CERT_CONTEXT> StoreAsRoot(const std::vector<unsigned char>& der) {
    const bool wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    const DWORD place = wine ? CERT_SYSTEM_STORE_CURRENT_USER : CERT_SYSTEM_STORE_LOCAL_MACHINE;
    const HCERTSTORE store = CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, place, L"Root");
    PCCERT_CONTEXT stored = nullptr;
    CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(), static_cast<DWORD>(der.size()),
                                     CERT_STORE_ADD_ALWAYS, &stored);
    CertControlStore(store, 0, CERT_STORE_CTRL_COMMIT, nullptr);
    const auto remove = [store](PCCERT_CONTEXT certificate) {
        CertDeleteCertificateFromStore(certificate);
        CertControlStore(store, 0, CERT_STORE_CTRL_COMMIT, nullptr);
        CertCloseStore(store, 0);
    };
    return stored != nullptr ? std::shared_ptr<const CERT_CONTEXT>(stored, remove) : nullptr;
}

std::wstring Request(const TlsPeer& peer, const std::wstring& host, const std::wstring& file) {
    return L"https://" + host + L":" + std::to_wstring(peer.port) + L"/ " + file + L" ";
}

// One client process. For each request the code, and the cause of a failure.
std::vector<std::string> Ask(const std::wstring& requests) {
    ChildProcess client(L"https-probe.exe", requests);
    EXPECT_EQ(client.Finish(), 0);
    std::vector<std::string> lines;
    std::istringstream output(client.m_output);
    for (std::string line; std::getline(output, line);) {
        lines.push_back(line);
    }
    lines.resize(100);
    return lines;
}

constexpr const char* kNoRoot = "the machine takes no root authority from this user: run the test as an administrator";

class HttpTrust : public testing::Test {
protected:
    HttpTrust() {
        fs::create_directories(m_folder);
        WriteFile(m_file, m_filed.Pem());
    }
    ~HttpTrust() override { fs::remove_all(m_folder); }

    const TestIdentity::Extensions m_ofAuthority = {{NID_basic_constraints, "critical,CA:TRUE"},
                                                    {NID_key_usage, "critical,keyCertSign,cRLSign"}};
    // A name of its own: Wine may still know the one that the test before has removed, and takes the first of a name.
    const TestIdentity m_stored = TestIdentity("Stored " + std::to_string(GetTickCount64()), m_ofAuthority);
    const TestIdentity m_filed = TestIdentity("Filed Authority", m_ofAuthority);
    const TestIdentity m_unknown = TestIdentity("Unknown Authority", m_ofAuthority);
    const fs::path m_folder = fs::temp_directory_path() / ("trust-" + std::to_string(GetCurrentProcessId()));
    const fs::path m_file = m_folder / "filed.pem";
};

TEST_F(HttpTrust, WindowsAndAnAuthorityFileJudgeAlike) {
    enum class Chain { kDirect, kSent, kMissing, kUnknown, kItself };
    struct Row {
        const char* name;
        std::string answer;  // the code; of a failure with a part of the cause
        const wchar_t* host = L"127.0.0.1";
        const char* alternativeName = "IP:127.0.0.1";
        const char* usage = "serverAuth";
        long begins = -60;
        long ends = 3600;
        Chain chain = Chain::kDirect;
        int highestVersion = TLS1_3_VERSION;
    };
    const wchar_t address[] = L"127.0.0.1";
    const char local[] = "IP:127.0.0.1";
    const char server[] = "serverAuth";
    const Row rows[] = {
        {"right address", "200"},
        {"right name", "200", L"localhost", "DNS:localhost"},
        {"another address", "-6 ", address, "IP:127.0.0.2"},
        {"another name", "-6 ", L"localhost", "DNS:other.example"},
        {"star before a name", "200", L"a_b.zone.localhost", "DNS:*.zone.localhost"},
        {"star before another", "-6 ", L"a.zone.localhost", "DNS:*.other.localhost"},
        {"a common name alone", "-6 ", address, nullptr},
        {"a common name and a mail address", "-6 ", address, "email:a@b.example"},
        {"expired", "-5 certificate has expired", address, local, server, -60, -30},
        {"too early", "-5 certificate is not yet valid", address, local, server, 1800},
        {"for clients", "-5 unsuitable certificate purpose", address, local, "clientAuth"},
        {"unknown authority", "-5 unable to get local issuer", address, local, server, -60, 3600, Chain::kUnknown},
        {"intermediate sent", "200", address, local, server, -60, 3600, Chain::kSent},
        {"intermediate missing", "-5 unable to get local issuer", address, local, server, -60, 3600, Chain::kMissing},
        {"signed by itself", "-5 ", address, local, server, -60, 3600, Chain::kItself},
        {"TLS 1.2", "200", address, local, server, -60, 3600, Chain::kDirect, TLS1_2_VERSION},
        {"TLS 1.1 at most", "-7 ", address, local, server, -60, 3600, Chain::kDirect, TLS1_1_VERSION},
    };
    const TestKey rsaKey = NewRsaKey();  // of all servers with one: making it takes long
    const TestIdentity storedRsa("Stored RSA " + std::to_string(GetTickCount64()), m_ofAuthority, nullptr, -60, 3600,
                                 NewRsaKey());
    const TestIdentity filedRsa("Filed RSA Authority", m_ofAuthority, nullptr, -60, 3600, NewRsaKey());
    WriteFile(m_file, m_filed.Pem() + filedRsa.Pem());
    const auto root = StoreAsRoot(m_stored.Der());
    const auto rsaRoot = StoreAsRoot(storedRsa.Der());
    if (!root || !rsaRoot) {
        GTEST_SKIP() << kNoRoot;
    }
    for (const TestIdentity* authority : {&m_stored, &m_filed, &storedRsa, &filedRsa}) {
        const bool rsa = authority == &storedRsa || authority == &filedRsa;
        const bool filed = authority == &m_filed || authority == &filedRsa;
        std::deque<TlsPeer> peers;
        std::wstring requests;
        for (const Row& row : rows) {
            TestIdentity::Extensions extensions = {{NID_ext_key_usage, row.usage}};
            if (row.alternativeName != nullptr) {
                extensions.emplace_back(NID_subject_alt_name, row.alternativeName);
            }
            const TestIdentity between("Intermediate", m_ofAuthority, authority, -60, 3600, rsa ? rsaKey : NewEcKey());
            const bool isBetween = row.chain == Chain::kSent || row.chain == Chain::kMissing;
            const TestIdentity* const issuer = row.chain == Chain::kItself    ? nullptr
                                               : row.chain == Chain::kUnknown ? &m_unknown
                                               : isBetween                    ? &between
                                                                              : authority;
            peers.emplace_back(
                TestIdentity("127.0.0.1", extensions, issuer, row.begins, row.ends, rsa ? rsaKey : NewEcKey()),
                row.chain == Chain::kSent ? &between : nullptr, row.highestVersion);
            requests += Request(peers.back(), row.host, filed ? m_file.wstring() : L"-");
        }
        const std::vector<std::string> answers = Ask(requests);
        for (std::size_t i = 0; i < peers.size(); ++i) {
            SCOPED_TRACE(std::string(rows[i].name) + (rsa ? ", RSA, " : ", EC, ") + (filed ? "file" : "Windows"));
            EXPECT_EQ(answers[i].substr(0, 3), rows[i].answer.substr(0, 3)) << answers[i];
            EXPECT_NE(answers[i].find(rows[i].answer.substr(3)), std::string::npos) << answers[i];
        }
    }
}

TEST_F(HttpTrust, AConnectionIsKeptForItsOwnAuthorities) {
    const TestIdentity::Extensions local = {{NID_subject_alt_name, "IP:127.0.0.1"}};
    TlsPeer stored(TestIdentity("stored", local, &m_stored));
    TlsPeer filed(TestIdentity("filed", local, &m_filed));
    const std::wstring byWindows = Request(stored, L"127.0.0.1", L"-");
    {
        const auto root = StoreAsRoot(m_stored.Der());
        if (!root) {
            GTEST_SKIP() << kNoRoot;
        }
        const auto answers = Ask(byWindows + Request(stored, L"127.0.0.1", m_file.wstring()) + byWindows +
                                 Request(filed, L"127.0.0.1", m_file.wstring()) + Request(filed, L"127.0.0.1", L"-"));
        const char* const codes[] = {"200", "-5 ", "200", "200", "-5 "};
        for (std::size_t i = 0; i < std::size(codes); ++i) {
            EXPECT_EQ(answers[i].substr(0, 3), codes[i]) << i << ": " << answers[i];
        }
    }
    EXPECT_EQ(Ask(byWindows)[0].substr(0, 3), "-5 ") << "the authority has been removed";
}

TEST_F(HttpTrust, AnHttpsProxyIsJudgedByTheRequestsOwnAuthorities) {
    TlsPeer proxy(TestIdentity("x", {{NID_subject_alt_name, "IP:127.0.0.1"}}, &m_filed));
    WriteFile(m_folder / "other.pem", m_unknown.Pem());
    const std::wstring url = L"https://origin.example/ ";
    const std::wstring right = url + m_file.wstring() + L" ";
    SetEnvironmentVariableW(L"https_proxy", (L"https://127.0.0.1:" + std::to_wstring(proxy.port)).c_str());
    const auto answers = Ask(right + url + (m_folder / "other.pem").wstring() + L" " + url + L"- " + right);
    SetEnvironmentVariableW(L"https_proxy", nullptr);
    const char* const codes[] = {"-3 ", "-5 ", "-5 ", "-3 "};  // the peer makes no tunnels, but it was asked for one
    for (std::size_t i = 0; i < std::size(codes); ++i) {
        EXPECT_EQ(answers[i].substr(0, 3), codes[i]) << i << ": " << answers[i];
    }
}

TEST_F(HttpTrust, BytesBehindTheLengthInOneRecordAreNoReply) {
    TlsPeer peer(TestIdentity("x", {{NID_subject_alt_name, "IP:127.0.0.1"}}, &m_filed));
    peer.server.Get("/excess", [](const httplib::Request&, httplib::Response& reply) {
        reply.set_content_provider(2, "text/plain", [](std::size_t, std::size_t, httplib::DataSink& sink) {
            const std::string bytes = "okHTTP/1.1 500 Evil\r\nContent-Length: 0\r\n\r\n";
            return sink.write(bytes.data(), bytes.size());
        });
    });
    const auto answers = Ask(L"https://127.0.0.1:" + std::to_wstring(peer.port) + L"/excess " + m_file.wstring() +
                             L" " + Request(peer, L"127.0.0.1", m_file.wstring()));
    EXPECT_EQ(answers[0], "200");
    EXPECT_EQ(answers[1], "200");
}

TEST_F(HttpTrust, VariablesAndPlantedFilesChangeNothing) {
    const fs::path mark = m_folder / "mark";
    const fs::path module = ProgramFolder() / "planted-module.dll";
    const std::string configuration =
        "openssl_conf = a\n[a]\nproviders = b\n[b]\nplanted = c\n[c]\nactivate = 1\nmodule = " +
        module.generic_string() + "\n";
    WriteFile(m_folder / "openssl.cnf", configuration);
    // An OpenSSL with "/openssl" for its own folder looks there on the drive of the working folder.
    const fs::path driveFolder = "C:\\openssl";
    const bool planted = fs::create_directory(driveFolder);
    if (planted) {
        WriteFile(driveFolder / "openssl.cnf", configuration);
    }
    char hashed[20] = {};
    std::snprintf(hashed, sizeof hashed, "%08lx.0", X509_subject_name_hash(m_filed.certificate.get()));
    fs::copy_file(m_file, m_folder / hashed);
    const std::map<std::wstring, fs::path> variables = {{L"OPENSSL_CONF", m_folder / "openssl.cnf"},
                                                        {L"OPENSSL_MODULES", ProgramFolder()},
                                                        {L"OPENSSL_ENGINES", ProgramFolder()},
                                                        {L"SSL_CERT_FILE", m_file},
                                                        {L"SSL_CERT_DIR", m_folder},
                                                        {L"SSLKEYLOGFILE", m_folder / "keys"},
                                                        {L"PLANTED_MARK", mark}};
    TlsPeer peer(TestIdentity("x", {{NID_subject_alt_name, "IP:127.0.0.1"}}, &m_filed));
    const fs::path before = fs::current_path();
    fs::current_path("C:\\");
    for (const auto& [name, value] : variables) {
        SetEnvironmentVariableW(name.c_str(), value.c_str());
    }
    const auto answers = Ask(Request(peer, L"127.0.0.1", L"-") + Request(peer, L"127.0.0.1", m_file.wstring()));
    EXPECT_EQ(answers[0].substr(0, 3), "-5 ") << "SSL_CERT_FILE or SSL_CERT_DIR: " << answers[0];
    EXPECT_EQ(answers[1], "200");
    EXPECT_FALSE(fs::exists(mark)) << "a planted configuration was read";
    EXPECT_FALSE(fs::exists(m_folder / "keys"));
    FreeLibrary(LoadLibraryW(module.c_str()));
    EXPECT_TRUE(fs::exists(mark)) << "control: the planted module leaves its mark";
    for (const auto& variable : variables) {
        SetEnvironmentVariableW(variable.first.c_str(), nullptr);
    }
    fs::current_path(before);
    if (planted) {
        fs::remove_all(driveFolder);
    }
}

}  // namespace
