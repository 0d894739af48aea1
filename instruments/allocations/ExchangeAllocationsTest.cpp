#include <HttpLib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "CertificateAuthorities.h"
#include "FailingAllocations.h"
#include "FailingLibraries.h"
#include "LocalServer.h"
#include "TestIdentity.h"
#include "TextFile.h"
#include "UrlText.h"

namespace {

namespace fs = std::filesystem;

enum class Form { kText, kHeaders, kDownload };

struct Row {
    const char* name;
    const LocalServer* server;
    std::string path = "/a";
    Form form = Form::kText;
    int code = 200;                          // with all the memory that it wants
    const std::string* body = &LocalBody();  // what comes with it
    const char* host = nullptr;              // null: the server's address
    const LocalServer* spared = nullptr;     // no request may come to it
    bool readsFile = false;                  // of authorities, anew when allocations fail
    bool asksPlatform = false;               // instead of the file
};

struct Result {
    int code = 0;
    std::string text;
    std::string delivered;
    int ends = 0;  // of which the handler was told
    int failed = 0;
    int asked = 0;
};

SSL_CTX* NewContext(const TestIdentity& identity, bool resumes, int highestVersion = TLS1_3_VERSION) {
    SSL_CTX* const context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_set_max_proto_version(context, highestVersion);
    SSL_CTX_use_certificate(context, identity.certificate.get());
    SSL_CTX_use_PrivateKey(context, identity.key.get());
    if (!resumes) {
        SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
        SSL_CTX_set_options(context, SSL_OP_NO_TICKET);
        SSL_CTX_set_num_tickets(context, 0);
    }
    return context;
}

std::string PemOf(const TestIdentity& identity) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    char* text = nullptr;
    PEM_write_bio_X509(memory.get(), identity.certificate.get());
    const long length = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

// Of OpenSSL's allocations one in so many fails, in each row from another one on: all take an hour.
int StepSetting() {
    const char* const setting = std::getenv("USERAUTH_ALLOCATIONS_STEP");
    return setting != nullptr ? std::atoi(setting) : 997;
}

constexpr int kTimeLimitSeconds = 20;

class ExchangeAllocations : public testing::Test {
protected:
    ExchangeAllocations() {
        fs::create_directories(m_folder);
        WriteFile(m_file, PemOf(m_authority) + PemOf(m_second));
    }
    ~ExchangeAllocations() override { fs::remove_all(m_folder); }

    TestIdentity Identity(const char* name, const char* alternativeName, const TestIdentity* authority) const {
        return TestIdentity(name, {{NID_subject_alt_name, alternativeName}, {NID_ext_key_usage, "serverAuth"}},
                            authority);
    }

    std::string UrlOf(const Row& row) const {
        const std::string port = ":" + std::to_string(row.server->port);
        const std::string scheme = row.server->kind.tls != nullptr ? "https://" : "http://";
        return scheme + (row.host != nullptr ? row.host : "127.0.0.1") + (row.server->kind.tunnels ? "" : port) +
               row.path;
    }

    static void SetProxy(const LocalServer& server) {
        const std::string scheme = server.kind.proxyTls != nullptr ? "https" : "http";
        server.kind.tunnels ? setenv("https_proxy", (scheme + "://127.0.0.1:" + std::to_string(server.port)).c_str(), 1)
                            : unsetenv("https_proxy");
    }

    // Without a number none fails.
    Result Perform(const Row& row, Allocator allocator = Allocator::kNew, int number = 1 << 30, bool lasting = false) {
        SetProxy(*row.server);
        BasicHttpLibStrategy strategy;
        strategy.SetUrl(Wide(UrlOf(row)));
        strategy.SetHeaders({{L"a-name", L"a value that is long enough for the heap"}});
        strategy.SetCertPath(row.asksPlatform ? L"" : m_file.wstring());
        strategy.SetErrorLogFunction([](const std::wstring&) {});
        Result result;
        result.delivered.reserve(2 * LongLocalBody().size());
        FileTransferHandler handler;
        handler.SetWriteDataFunc([&result](const char* data, std::size_t size, bool finalBlock) {
            result.delivered.append(data, size);
            result.ends += finalBlock ? 1 : 0;
            return true;
        });
        std::map<std::string, std::string> headers;
        CurlHttpLibContext context(&strategy);
        const FailingAllocations failing(allocator, number, lasting);
        try {
            result.code = row.form == Form::kText      ? context.Request(result.text, kTimeLimitSeconds)
                          : row.form == Form::kHeaders ? context.Request(result.text, headers)
                                                       : context.Request(result.text, &handler);
        } catch (...) {
            ADD_FAILURE() << "an exception leaves it";
        }
        result.failed = failing.Failed();
        result.asked = failing.Asked();
        return result;
    }

    // Everything or nothing: the reply as it is, or an error of which nobody was told an end.
    static void ExpectWholeOrError(const Row& row, const Result& result) {
        const bool download = row.form == Form::kDownload;
        if (result.code == row.code && row.code > 0) {
            EXPECT_EQ(download ? result.delivered : result.text, *row.body);
            EXPECT_EQ(result.ends, download ? 1 : 0);
            return;
        }
        EXPECT_LT(result.code, 0);
        EXPECT_EQ(result.text, "");
        EXPECT_EQ(result.ends, 0) << "the handler is told of an end that was not, code " << result.code;
        EXPECT_EQ(result.delivered, row.body->substr(0, result.delivered.size()));
    }

    static int Findings() {
        return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
    }

    void TryOnce(const Row& row, const Result& result, std::chrono::steady_clock::duration time) {
        ExpectWholeOrError(row, result);
        // A handshake of which OpenSSL forgets that it has failed waits for the time limit, of connecting or of all.
        EXPECT_LT(time, std::chrono::seconds(kTimeLimitSeconds + 5)) << "it hangs";
        EXPECT_EQ(Perform(row).code, row.code) << "the next request, after " << result.code;
        EXPECT_TRUE(row.spared == nullptr || row.spared->requests == 0) << "a request was sent";
    }

    // From the first number on every step-th; of a peer that is to be refused the last ones singly: there its name is
    // judged. Returns how many failed.
    int Try(const Row& row, Allocator allocator, int first, int step) {
        constexpr int kLast = 30;
        const int found = Findings();
        const int singly = Perform(row, allocator).asked - kLast;
        const bool isJudged = row.spared != nullptr && allocator == Allocator::kOpenSsl;
        int failures = 0;
        for (const bool lasting : {false, true}) {
            int failed = 1;
            for (int number = first; failed > 0 && Findings() == found;) {
                SCOPED_TRACE(std::string(row.name) + ", allocator " + std::to_string(static_cast<int>(allocator)) +
                             ", allocation " + std::to_string(number) + (lasting ? " and all that follow" : ""));
                if (row.readsFile) {
                    fs::last_write_time(m_file, fs::file_time_type::clock::now() + std::chrono::seconds(++m_stamps));
                }
                const auto start = std::chrono::steady_clock::now();
                const Result result = Perform(row, allocator, number, lasting);
                failed = result.failed;
                failures += failed > 0 ? 1 : 0;
                TryOnce(row, result, std::chrono::steady_clock::now() - start);
                const bool isLast = isJudged && !lasting && number + step > singly;
                number = isLast ? std::max(number + 1, singly) : number + step;
            }
        }
        return failures;
    }

    const TestIdentity::Extensions m_ofAuthority = {{NID_basic_constraints, "critical,CA:TRUE"},
                                                    {NID_key_usage, "critical,keyCertSign,cRLSign"}};
    const TestIdentity m_authority = TestIdentity("Filed Authority", m_ofAuthority);
    const TestIdentity m_second = TestIdentity("Second Filed Authority", m_ofAuthority);
    const TestIdentity m_unknown = TestIdentity("Unknown Authority", m_ofAuthority);
    const fs::path m_folder = fs::temp_directory_path() / ("exchange-allocations-" + std::to_string(getpid()));
    const fs::path m_file = m_folder / "filed.pem";
    int m_stamps = 0;
};

}  // namespace

TEST_F(ExchangeAllocations, MayFailInEveryExchange) {
    ASSERT_TRUE(LetLibcurlFail());
    const TestIdentity good = Identity("x", "IP:127.0.0.1,DNS:origin.example,DNS:peer.localhost", &m_authority);
    const char other[] = "IP:127.0.0.2,DNS:other.example";
    SSL_CTX* const anew = NewContext(good, false);
    SSL_CTX* const untrusted = NewContext(Identity("127.0.0.1", "IP:127.0.0.1", &m_unknown), true);
    SSL_CTX* const otherAddress = NewContext(Identity("127.0.0.1", other, &m_authority), true);
    SSL_CTX* const otherName = NewContext(Identity("peer.localhost", other, &m_authority), true);
    SSL_CTX* const otherOrigin = NewContext(Identity("origin.example", other, &m_authority), true);
    const auto start = [](const ServerKind& kind) { return new LocalServer(kind); };
    const LocalServer* const http = start({});
    const LocalServer* const closing = start({anew, false});
    const LocalServer* const keeping = start({anew, true});
    const LocalServer* const spared[] = {
        start({untrusted, false}),
        start({otherAddress, false}),
        start({otherName, false}),
        start({anew, false}),
        start({otherOrigin, false, true}),
        start({}),
        start({anew, false, true, NewContext(Identity("x", other, &m_authority), true)})};
    const std::string toHttp = "/to?http://127.0.0.1:" + std::to_string(spared[5]->port) + "/a";
    const Form text = Form::kText;
    const Form download = Form::kDownload;
    const std::string none;
    const Row rows[] = {
        {"https", closing},
        {"https, headers, chunks", closing, "/chunks", Form::kHeaders},
        {"https, by name", closing, "/a", text, 200, &LocalBody(), "peer.localhost"},
        {"https, TLS 1.2", start({NewContext(good, false, TLS1_2_VERSION), false})},
        {"https, resumed", start({NewContext(good, true), false})},
        {"https, TLS 1.2, resumed", start({NewContext(good, true, TLS1_2_VERSION), false})},
        {"https, kept", keeping},
        {"https, the file anew", closing, "/a", text, 200, &LocalBody(), nullptr, nullptr, true},
        {"https, moved", closing, "/moved"},
        {"https, moved to http", closing, toHttp, text, kHttpRedirectRefused, &none, nullptr, spared[5]},
        {"https, unknown authority", spared[0], "/a", text, kHttpCertificateUntrusted, &none, nullptr, spared[0]},
        {"https, another address", spared[1], "/a", text, kHttpCertificateWrongName, &none, nullptr, spared[1]},
        {"https, another name", spared[2], "/a", text, kHttpCertificateWrongName, &none, "peer.localhost", spared[2]},
        {"https, Windows refuses", spared[3], "/a", text, kHttpCertificateUntrusted, &none, nullptr, spared[3], false,
         true},
        {"https, download", closing, "/long", download, 200, &LongLocalBody(), "peer.localhost"},
        {"https, download, gzip, kept", keeping, "/gzip", download},
        {"http, download", http, "/long", download, 200, &LongLocalBody(), "peer.localhost"},
        {"http, download, chunks", http, "/chunks", download},
        {"http, download, gzip", http, "/gzip", download},
        {"http, download, deflate", http, "/deflate", download},
        {"http, download, br", http, "/br", download},
        {"http, text, gzip", http, "/gzip"},
        {"http, text, br", http, "/br"},
        {"http, download, 404", http, "/missing", download, 404, &none},
        {"http, download, moved", http, "/moved", download},
        {"proxy", start({anew, false, true}), "/a", text, 200, &LocalBody(), "origin.example"},
        {"proxy, another name", spared[4], "/a", text, kHttpCertificateWrongName, &none, "origin.example", spared[4]},
        {"https proxy", start({anew, false, true, anew}), "/a", text, 200, &LocalBody(), "origin.example"},
        {"https proxy, another address", spared[6], "/a", text, kHttpCertificateWrongName, &none, "origin.example",
         spared[6]},
    };
    const int step = StepSetting();
    int all = 0;
    int first = 0;
    for (const Row& row : rows) {
        for (int warm = 0; warm < 3; ++warm) {
            const Result control = Perform(row);
            EXPECT_EQ(control.code, row.code) << row.name << ", control";
            ExpectWholeOrError(row, control);
        }
        int failures[4] = {};
        for (const Allocator allocator :
             {Allocator::kNew, Allocator::kOpenSsl, Allocator::kLibcurl, Allocator::kDecoders}) {
            const bool isCheap = row.server->kind.tls == nullptr || allocator == Allocator::kDecoders;
            const int ownStep = isCheap ? 1 : allocator == Allocator::kOpenSsl ? step : (step + 24) / 25;
            failures[static_cast<int>(allocator)] = Try(row, allocator, first % ownStep, ownStep);
        }
        std::printf("%-32s failed: %5d own, %5d of OpenSSL, %4d of libcurl, %2d of decoders\n", row.name, failures[0],
                    failures[1], failures[2], failures[3]);
        first += 17;
        all += failures[0] + failures[1] + failures[2] + failures[3];
    }
    std::printf("%d allocations failed in exchanges, of OpenSSL's every %d.\n", all, step);
    EXPECT_GT(all, 300) << "control";
}

TEST_F(ExchangeAllocations, OfAnAuthorityFileNothingHalfIsRemembered) {
    ASSERT_TRUE(suite::AuthoritiesFor(m_file.wstring()));
    int failed = 1;
    for (int number = 0; failed > 0 && !HasFailure(); number += (StepSetting() + 99) / 100) {
        SCOPED_TRACE(number);
        fs::last_write_time(m_file, fs::file_time_type::clock::now() + std::chrono::seconds(++m_stamps));
        {
            const FailingAllocations failing(Allocator::kOpenSsl, number, false);
            suite::AuthoritiesFor(m_file.wstring());
            failed = failing.Failed();
        }
        const auto next = suite::AuthoritiesFor(m_file.wstring());
        ASSERT_TRUE(next != nullptr && next->certificates != nullptr);
        const STACK_OF(X509_OBJECT)* const objects = X509_STORE_get0_objects(next->certificates.get());
        EXPECT_EQ(sk_X509_OBJECT_num(objects), 2);
        for (int i = 0; i < sk_X509_OBJECT_num(objects); ++i) {
            X509* const certificate = X509_OBJECT_get0_X509(sk_X509_OBJECT_value(objects, i));
            EXPECT_EQ(X509_check_ca(certificate), 1);
            EXPECT_NE(X509_get0_pubkey(certificate), nullptr);
        }
    }
}

TEST(UrlAllocations, OfAUrlNoPartIsMissing) {
    ASSERT_TRUE(LetLibcurlFail());
    const std::string url = "https://user@Host.example:8443/path?query";
    const auto joined = [&url] {
        const std::optional<suite::UrlParts> parts = suite::ParseUrl(url);
        return parts ? parts->scheme + " " + parts->host + " " + parts->port + " " + parts->display : "none";
    };
    const std::string whole = joined();
    for (const Allocator allocator : {Allocator::kNew, Allocator::kLibcurl}) {
        int failed = 1;
        int number = 0;
        for (; failed > 0; ++number) {
            std::string read = whole;
            {
                const FailingAllocations failing(allocator, number, false);
                try {
                    read = joined();
                } catch (const std::bad_alloc&) {
                }
                failed = failing.Failed();
            }
            // Without memory for the user, libcurl takes the URL for a malformed one.
            EXPECT_TRUE(read == whole || read == "none") << number << ": " << read;
        }
        EXPECT_GT(number, 3) << "control: hardly any is asked for";
    }
}
