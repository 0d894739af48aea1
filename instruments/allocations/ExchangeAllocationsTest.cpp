#include <HttpLib.h>
#include <gtest/gtest.h>

#include <new>

#include "CertificateAuthorities.h"
#include "FailingLibraries.h"
#include "TorturedExchange.h"
#include "UrlText.h"

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
    const std::string toHttp = "/to/http://127.0.0.1:" + std::to_string(spared[5]->port) + "/a";
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
            EXPECT_GT(EVP_PKEY_security_bits(X509_get0_pubkey(certificate)), 0) << "it passes for too weak";
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
