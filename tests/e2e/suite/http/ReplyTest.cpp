#include <gtest/gtest.h>

#include "HttpCall.h"
#include "TextFile.h"

namespace {

using Then = RawReply::Then;

// RFC 1952, 8.
std::uint32_t CheckSum(const std::string& text) {
    std::uint32_t sum = ~0U;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum >> 1 ^ (0xEDB88320U & ~((sum & 1) - 1));
        }
    }
    return ~sum;
}

std::string LittleEndian(std::uint32_t number) {
    return {static_cast<char>(number), static_cast<char>(number >> 8), static_cast<char>(number >> 16),
            static_cast<char>(number >> 24)};
}

// A deflate body of one stored block, and an empty one. first: 0 in its three lowest bits, the rest means nothing.
std::string Stored(char first, const std::string& text) {
    const char size = static_cast<char>(text.size());
    const std::string last("\x01\0\0\xFF\xFF", 5);
    return std::string{first, size, '\0', static_cast<char>(~size), '\xFF'} + text + last;
}

// Text of 1 + 258 * repeats bytes as gzip that lacks only its check sum and size: one block of fixed codes (RFC 1951,
// 3.2.6), a literal and then matches of 258 bytes at distance 1.
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
    const std::string deflate = "Content-Encoding: deflate\r\n";
    const std::string brotli = "Content-Encoding: br\r\n";
    const std::string end = "\r\nContent-Length: 2\r\n\r\nok";
    const std::string chunks = "HTTP/1.1 200 OK\r\n" + chunked;
    const std::size_t repeats = (kLimit - 1) / 258;
    const std::string longText(1 + 258 * repeats, 'x');
    constexpr int kBroken = kHttpConnectionBroken;
    const Row rows[] = {
        {"control step: whole", 200, OkReply()},
        {"largest text", 200, OkReply(std::string(kLimit, 'x'))},
        {"one byte too large", kHttpReplyTooLarge, OkReply(std::string(kLimit + 1, 'x'))},
        {"gzip beyond the limit", kHttpReplyTooLarge, OkReply(RepeatedAsGzip(kLimit / 258 + 1), gzip)},
        {"gzip of nearly as much", 200,
         OkReply(RepeatedAsGzip(repeats) + LittleEndian(CheckSum(longText)) +
                     LittleEndian(static_cast<std::uint32_t>(longText.size())),
                 gzip)},
        {"gzip with a wrong check sum", kHttpBadEncoding,
         OkReply(RepeatedAsGzip(9) + LittleEndian(1) + LittleEndian(1 + 258 * 9), gzip)},
        {"14 bytes that unfold to 1 MiB", 200,
         OkReply(std::string("\x5B\xFF\xFF\x8F\x5F\x02\x2F\x1E\x0B\x04\x72\xEF\x1F\0", 14), brotli)},
        {"14 bytes that unfold to a byte more", kHttpReplyTooLarge,
         OkReply(std::string("\x9B\0\0\x10\xF8\x25\xF0\xE2\xB1\x40\x40\xF7\xFE\x01", 14), brotli)},
        {"no encodings, by their names", 200, OkReply("ok", "Content-Encoding: identity,\tnone ,\r\n")},
        {"an encoding between blanks", 200, OkReply(Stored(0, "ok"), "Content-Encoding:  identity,\tdeflate \r\n")},
        {"raw deflate, as zlib with a check of its head that fails", 200, OkReply(Stored(8, "ok"), deflate)},
        {"raw deflate, as zlib with a dictionary", 200, OkReply(Stored(0x78, std::string(0x20, 'x')), deflate)},
        {"raw deflate, as zlib with a window of 4 MiB", 200, OkReply(Stored('\xE8', "xxxx"), deflate)},
        {"raw deflate whose first byte comes alone",
         200,
         {chunks.substr(0, 17) + deflate + chunked + "1\r\n\x08\r\n", Then::kKeep,
          "B\r\n" + Stored(8, "ok").substr(1) + "\r\n0\r\n\r\n"}},
        {"encoding continued on a second line", kBroken, OkReply("ok", "Content-Encoding: identity\r\n ,none\r\n")},
        {"transfer coding continued on a second line",
         kBroken,
         {chunks.substr(0, chunks.size() - 2) + " \r\n\r\n2\r\nok\r\n0\r\n\r\n"}},
        {"HTTP/1.0", 200, {"HTTP/1.0 200 OK" + end, Then::kClose}},
        {"HTTP/1.2", kBroken, {"HTTP/1.2 200 OK" + end, Then::kClose}},
        {"status of four digits", kBroken, {"HTTP/1.1 2000 OK" + end, Then::kClose}},
        {"status of two digits", kBroken, {"HTTP/1.1 20 OK" + end, Then::kClose}},
        {"status behind a tab", kBroken, {"HTTP/1.1\t200 OK" + end, Then::kClose}},
        {"lines that end in LF", 200, {"HTTP/1.1 200\nContent-Length: 2\n\nok"}},
        {"an interim reply's framing is its own",
         200,
         {"HTTP/1.1 103 E\r\nContent-Length: 9\r\nContent-Encoding: x\r\nLocation: /n\r\n\r\nHTTP/1.1 200 OK" + end}},
        {"an interim reply's chunks are its own", 200, {"HTTP/1.1 103 E\r\n" + chunked + "HTTP/1.1 200 OK" + end}},
        {"a length of 18 digits",
         kHttpReplyTooLarge,
         {"HTTP/1.1 200 OK\r\nContent-Length: 999999999999999999\r\n\r\nok"}},
        {"a length with zeros in front", 200, {"HTTP/1.1 200 OK\r\nContent-Length: 000000000000000002\r\n\r\nok"}},
        {"chunk sizes in every notation",
         200,
         {chunks + "a\r\n0123456789\r\nF \r\n0123456789abcde\r\n009\t;x=y\r\n123456789\r\n000;\r\nA: b\r\n\r\n"}},
        {"chunk size of a letter behind f", kBroken, {chunks + "g\r\n0123456789abcdef\r\n0\r\n\r\n"}},
        {"chunk size without a number", kBroken, {chunks + ";x\r\nok\r\n0\r\n\r\n"}},
        {"LF alone behind a chunk's size", kBroken, {chunks + "2\nok\r\n0\r\n\r\n"}},
        {"LF alone behind a chunk's extension", kBroken, {chunks + "2;x\nok\r\n0\r\n\r\n"}},
        {"CR alone behind a chunk's size", kBroken, {chunks + "2\rok\r\n0\r\n\r\n"}},
        {"LF alone behind a chunk", kBroken, {chunks + "2\r\nok\n0\r\n\r\n"}},
        {"CR alone behind a chunk", kBroken, {chunks + "2\r\nok\r0\r\n\r\n"}},
        {"LF alone behind the last chunk", kBroken, {chunks + "2\r\nok\r\n0\r\n\n"}},
        {"CR alone behind the last chunk", kBroken, {chunks + "2\r\nok\r\n0\r\n\rx"}},
        {"trailers without end", kHttpReplyTooLarge, {chunks + "2\r\nok\r\n0\r\n", Then::kRepeat, "A: b\r\n"}},
        {"an error page under an unknown encoding",
         kHttpBadEncoding,
         {RawReplyBytes("404 Not Found", "Content-Encoding: x\r\n", "text")}},
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
        EXPECT_EQ(call.Send(), row.expected) << (call.errors.empty() ? "" : Narrow(call.errors[0]));
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
          "Folded: c\r\n  d\r\n\te \r\nTransfer-Encoding: chunked\r\n\r\n4\r\ngone\r\n0\r\nHTTP/1.1: 1\r\nTrailer: "
          "1\r\n\r\n"}});
    HttpCall call(server.Url());
    std::map<std::string, std::string> headers = {{"Stale", "1"}};
    EXPECT_EQ(CurlHttpLibContext(&call.strategy).Request(call.response, headers), 404);
    const std::map<std::string, std::string> expected = {
        {"X-Two", "a, b"}, {"Other", ""}, {"Folded", "c d e"}, {"Transfer-Encoding", "chunked"}};
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
