#include <gtest/gtest.h>

#include "HttpCall.h"
#include "TextFile.h"

namespace {

// Text of 1 + 258 * repeats bytes as gzip that lacks only its check sum: one block of fixed codes (RFC 1951, 3.2.6), a
// literal and then matches of 258 bytes at distance 1.
std::string RepeatedAsGzip(std::size_t repeats) {
    std::string bits = "11010101000";
    for (std::size_t i = 0; i < repeats; ++i) {
        bits += "1100010100000";
    }
    bits += "0000000";
    std::string bytes("\x1F\x8B\x08\0\0\0\0\0\x02\x03", 10);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (i % 8 == 0) {
            bytes += '\0';
        }
        bytes.back() = static_cast<char>(bytes.back() | ((bits[i] - '0') << (i % 8)));
    }
    return bytes;
}

TEST(HttpReply, FailuresHaveTheirOwnCode) {
    struct Row {
        const char* name;
        int expected;
        RawReply reply;
    };
    constexpr std::size_t kLimit = 16 * 1024 * 1024;
    const std::string chunked = "Transfer-Encoding: chunked\r\n\r\n";
    const std::string gzip = "Content-Encoding: gzip\r\n";
    const Row rows[] = {
        {"control step: whole", 200, OkReply()},
        {"largest text", 200, OkReply(std::string(kLimit, 'x'))},
        {"one byte too large", kHttpReplyTooLarge, OkReply(std::string(kLimit + 1, 'x'))},
        {"gzip beyond the limit", kHttpReplyTooLarge, OkReply(RepeatedAsGzip(kLimit / 258 + 1), gzip)},
        {"encoding of a redirect's body is not looked at",
         kHttpRedirectRefused,
         {RawReplyBytes("302 Found", "Location: /\r\n" + gzip, "plain text here")}},
        {"trailers are no headers",
         302,
         {"HTTP/1.1 302 Found\r\n" + chunked + "2\r\nok\r\n0\r\nLocation: /n\r\n \r\n\r\n"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RawServer server({row.reply});
        HttpCall call(server.Url(L"/path?access_token=secret"), {{L"Cookie", L"secret"}});
        EXPECT_EQ(call.Send(), row.expected);
        ASSERT_EQ(call.errors.size(), row.expected < 0 ? 1u : 0u);
        if (row.expected < 0) {
            EXPECT_EQ(call.response, "");
            EXPECT_EQ(call.errors[0].find(L"HTTP: GET 127.0.0.1:" + std::to_wstring(server.Port()) + L" failed: "), 0u);
            call.progress.push_back(call.errors[0]);
        }
        for (const std::wstring& line : call.progress) {
            EXPECT_EQ(line.find(L"secret"), std::wstring::npos) << line;
        }
    }
}

TEST(HttpReply, NobodyListens) {
    std::wstring url;
    {
        RawServer gone({OkReply()});
        url = gone.Url();
    }
    const struct {
        std::wstring url;
        const wchar_t* certificates;
        int code;
    } rows[] = {{url, L"Z:\\no\\such\\file.pem", kHttpConnectFailed},
                {L"https" + url.substr(4), L"Z:\\no\\such\\file.pem", kHttpCertificateFileInvalid}};
    for (const auto& row : rows) {
        HttpCall call(row.url);
        call.strategy.SetCertPath(row.certificates);
        EXPECT_EQ(call.Send(), row.code) << Narrow(row.url);
    }
}

TEST(HttpReply, HeadersOfTheFinalReply) {
    RawServer server(
        {{"HTTP/1.1 103 Early Hints\r\nEarly: 1\r\n\r\nHTTP/1.1 404 Not Found\r\nX-Two: a\r\nOther:\r\nx-two:  b\r\n"
          "Transfer-Encoding: chunked\r\n\r\n4\r\ngone\r\n0\r\nHTTP/1.1: 1\r\nTrailer: 1\r\n\r\n"}});
    HttpCall call(server.Url());
    std::map<std::string, std::string> headers = {{"Stale", "1"}};
    EXPECT_EQ(CurlHttpLibContext(&call.strategy).Request(call.response, headers), 404);
    const std::map<std::string, std::string> expected = {
        {"X-Two", "a, b"}, {"Other", ""}, {"Transfer-Encoding", "chunked"}};
    EXPECT_EQ(headers, expected);
    EXPECT_EQ(call.response, "gone");
}

TEST(HttpReply, ADownloadMayBeLargerThanATextAndItsHandlerMayEndIt) {
    const std::string large(17 * 1024 * 1024, 'x');
    RawServer server({OkReply(large), OkReply("refused")});
    HttpCall call(server.Url());
    EXPECT_EQ(call.SendAs(RequestForm::kDownload), 200);
    EXPECT_EQ(call.received.size(), large.size() + 1);
    EXPECT_EQ(call.response, "");
    for (const bool throws : {false, true}) {
        int calls = 0;
        call.handler.SetWriteDataFunc([&](const char*, std::size_t&, bool) {
            ++calls;
            return throws ? throw std::runtime_error("disk full") : false;
        });
        EXPECT_EQ(CurlHttpLibContext(&call.strategy).Request(call.response, &call.handler), kHttpWriteRefused);
        EXPECT_EQ(calls, 1) << "not told of the end";
    }
}

}  // namespace
