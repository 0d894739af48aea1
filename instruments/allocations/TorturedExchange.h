#pragma once

#include <HttpLib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include "FailingAllocations.h"
#include "LocalServer.h"
#include "TestIdentity.h"
#include "TextFile.h"

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

inline SSL_CTX* NewContext(const TestIdentity& identity, bool resumes, int highestVersion = TLS1_3_VERSION) {
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

inline std::string PemOf(const TestIdentity& identity) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    char* text = nullptr;
    PEM_write_bio_X509(memory.get(), identity.certificate.get());
    const long length = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

// Of OpenSSL's allocations one in so many fails, in each row from another one on: all take an hour.
inline int StepSetting() {
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
