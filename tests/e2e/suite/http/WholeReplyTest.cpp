#include <gtest/gtest.h>

#include <chrono>

#include "HttpCall.h"
#include "SandboxSession.h"
#include "http/TransferPace.h"

namespace {

using Then = RawReply::Then;

constexpr char kText[] = "decoded text";
const std::string kGzip(
    "\x1F\x8B\x08\0\0\0\0\0\x02\x03\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\xF4\x8D\x4C"
    "\x0D\x0C\0\0\0",
    32);
const std::string kZlib("\x78\x9C\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\x1E\x16\x04\xAE", 20);
const std::string kDeflate("\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0", 14);
const std::string kBrotli("\x8B\x05\x80\x64\x65\x63oded text\x03");

// 8 MiB of zero bytes.
const std::string kBomb("\x9B\xFF\xFF\x7F\xF8\x27\0\xE2\xB1\x40\x20\xF7\xFE\x0F", 14);

std::string Coded(const std::string& coding) { return "Content-Encoding: " + coding + "\r\n"; }

std::string Chunked(const std::string& body, const std::string& headers = "") {
    char size[16];
    std::snprintf(size, sizeof size, "%zX\r\n", body.size() - 1);
    return "HTTP/1.1 200 OK\r\n" + headers + "Transfer-Encoding: chunked\r\n\r\n1;x=y\r\n" + body[0] + "\r\n" + size +
           body.substr(1) + "\r\n0\r\nTrailer: 1\r\n\r\n";
}

// The same body, cut at every byte, in HTTP replies that are whole; then with a byte behind it, and then as it is.
std::vector<RawReply> CutWithin(const std::string& body, const std::string& coding) {
    std::vector<RawReply> script;
    for (std::size_t size = 0; size < body.size(); ++size) {
        script.push_back(OkReply(body.substr(0, size), Coded(coding)));
    }
    script.push_back(OkReply(body + "x", Coded(coding)));
    script.push_back(OkReply(body, Coded(coding)));
    return script;
}

TEST(HttpReply, CountsFromItsLastByteOn) {
    const struct {
        const char* name;
        std::vector<RawReply> script;
        int code;  // of all but the last
    } rows[] = {
        {"length", CutAtEveryByte(OkReply(kText, "A: b\r\n c\r\n").bytes), kHttpConnectionBroken},
        {"chunks", CutAtEveryByte(Chunked(kText)), kHttpConnectionBroken},
        {"gzip in chunks", CutAtEveryByte(Chunked(kGzip, Coded("x-gzip"))), kHttpConnectionBroken},
        {"behind an interim reply", CutAtEveryByte("HTTP/1.1 103 E\r\nA: b\r\n\r\n" + OkReply(kText).bytes),
         kHttpConnectionBroken},
        {"gzip", CutWithin(kGzip, "gzip"), kHttpBadEncoding},
        {"deflate", CutWithin(kZlib, "identity, Deflate"), kHttpBadEncoding},
        {"raw deflate", CutWithin(kDeflate, "deflate"), kHttpBadEncoding},
        {"brotli", CutWithin(kBrotli, "br"), kHttpBadEncoding},
    };
    for (const auto& row : rows) {
        for (const RequestForm form : {RequestForm::kHeaders, RequestForm::kDownload}) {
            RawServer server(row.script);
            for (std::size_t size = 0; size < row.script.size(); ++size) {
                SCOPED_TRACE(testing::Message()
                             << row.name << ", form " << static_cast<int>(form) << ", byte " << size);
                const bool isWhole = size + 1 == row.script.size();
                HttpCall call(server.Url());
                EXPECT_EQ(call.SendAs(form), isWhole ? 200 : row.code);
                EXPECT_EQ(call.BodyOf(form), isWhole ? kText : "");
                EXPECT_TRUE(isWhole || (call.headers.size() <= 1 && call.received.find('.') == std::string::npos));
            }
            EXPECT_EQ(server.Requests().size(), row.script.size());
        }
    }
}

std::string Fields(std::size_t count) {
    std::string fields;
    for (std::size_t i = 0; i < count; ++i) {
        fields += "N" + std::to_string(i) + ": v\r\n";
    }
    return fields;
}

TEST(HttpReply, AmbiguousOrOverlongOnesAreRefusedAndSpoilNoOther) {
    constexpr int kBroken = kHttpConnectionBroken;
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunks = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string moved = "HTTP/1.1 302 Found\r\nLocation: /next\r\n";
    const struct {
        const char* name;
        int code;
        RawReply reply;
        const char* body = "ok";
    } rows[] = {
        {"interim reply alone", kBroken, {"HTTP/1.1 100 Continue\r\n\r\n", Then::kClose}},
        {"another protocol", kBroken, {"HTTP/1.1 101 Switching\r\nContent-Length: 2\r\n\r\nok"}},
        {"no HTTP", kBroken, {"hello\r\n\r\n", Then::kClose}},
        {"garbled version", kBroken, {"HTTP/x 404 No\r\nContent-Length: 2\r\n\r\nok"}},
        {"header without a colon", kBroken, {ok + "Content-Length: 2\r\nx\r\n\r\nok"}},
        {"end of the connection", 200, {ok + "\r\nok", Then::kClose}},
        {"end of the connection by a reset", kBroken, {ok + "\r\nok", Then::kReset}},
        {"one length twice", 200, {ok + "Content-Length: 2\r\nContent-Length: 2\r\n\r\nok"}},
        {"two lengths", kBroken, {ok + "Content-Length: 3\r\nContent-Length: 2\r\n\r\nok"}},
        {"list of lengths", kBroken, {ok + "Content-Length: 2, 2\r\n\r\nok"}},
        {"negative length", kBroken, {ok + "Content-Length: -2\r\n\r\nok", Then::kClose}},
        {"signed length", kBroken, {ok + "Content-Length: +2\r\n\r\nok"}},
        {"huge length", kHttpReplyTooLarge, {ok + "Content-Length: 99999999999999999999\r\n\r\nok"}},
        {"blank before the colon", kBroken, {ok + "Content-Length : 2\r\n\r\nok", Then::kClose}},
        {"continued length", kBroken, {ok + "Content-Length: 2\r\n 0\r\n\r\nok"}},
        {"length and chunks",
         kBroken,
         {ok + "Content-Length: 12\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nok\r\n0\r\n\r\n"}},
        {"other transfer coding", kBroken, {ok + "Transfer-Encoding: gzip, chunked\r\n\r\n2\r\nok\r\n0\r\n\r\n"}},
        {"chunk size that is none", kBroken, {chunks + "-2\r\nok\r\n0\r\n\r\n"}},
        {"chunk longer than its size", kBroken, {chunks + "1\r\nok\r\n0\r\n\r\n"}},
        {"huge chunk", kBroken, {chunks + "FFFFFFFFFFFFFFF0\r\nok"}},
        {"chunk extension without an end", kHttpReplyTooLarge, {chunks + "2;" + std::string(270000, 'x')}},
        {"bytes behind the chunks", 200, {chunks + "2\r\nok\r\n0\r\n\r\n" + OkReply("evil").bytes}},
        {"bytes behind the length", 200, {OkReply().bytes + OkReply("evil").bytes}},
        {"later bytes behind the chunks", 200, {chunks + "2\r\nok\r\n0\r\n\r\n", Then::kKeep, OkReply("evil").bytes}},
        {"later bytes behind no content",
         204,
         {"HTTP/1.1 204 No\r\n" + Coded("gzip") + "\r\n", Then::kKeep, "evil"},
         ""},
        {"redirect that is cut", 200, {moved + "Content-Length: 9\r\n\r\nok", Then::kClose}, "next"},
        {"redirect with malformed chunks", 200, {moved + "Transfer-Encoding: chunked\r\n\r\nx"}, "next"},
        {"redirect without an end", 200, {moved + "\r\nok"}, "next"},
        {"redirect with a large body", 200, {moved + "Content-Length: 99999\r\n\r\nok"}, "next"},
        {"a thousand headers", 200, OkReply("ok", Fields(999))},
        {"one header more", kHttpReplyTooLarge, OkReply("ok", Fields(1000))},
        {"a line beyond 100 KB", kHttpReplyTooLarge, OkReply("ok", "A: " + std::string(102400, 'x') + "\r\n")},
        {"two gzip members", kHttpBadEncoding, OkReply(kGzip + kGzip, Coded("gzip"))},
        {"two codings", kHttpBadEncoding, OkReply(kGzip, Coded("gzip") + Coded("gzip"))},
        {"a few bytes that unfold to 8 MiB", kHttpReplyTooLarge, OkReply(kBomb, Coded("br"))},
    };
    for (const auto& row : rows) {
        for (const RequestForm form : kRequestForms) {
            SCOPED_TRACE(testing::Message() << row.name << ", form " << static_cast<int>(form));
            RawServer server({row.reply, OkReply("next")});
            HttpCall call(server.Url());
            EXPECT_EQ(call.SendAs(form), row.code);
            if (row.code > 0) {
                EXPECT_EQ(call.BodyOf(form), row.body);
            }
            Sleep(row.reply.last.empty() ? 0 : 100);
            HttpCall next(server.Url());
            EXPECT_EQ(next.SendAs(form), 200);
            EXPECT_EQ(next.BodyOf(form), "next");
        }
    }
}

// libcurl once kept a pointer into freed memory for such a line, and the next replies wrote through it.
TEST(HttpReply, FiftyThatBeginWithABlankLeaveTheirHandleSound) {
    for (const RequestForm form : kRequestForms) {
        std::vector<RawReply> script(50, {"HTTP/1.1 200 OK\r\n Content-Type: a\r\nContent-Length: 2\r\n\r\nok"});
        script.push_back(OkReply("next"));
        RawServer server(script);
        std::string last;
        for (std::size_t i = 0; i < script.size(); ++i) {
            HttpCall call(server.Url());
            EXPECT_EQ(call.SendAs(form), 200);
            last = call.BodyOf(form);
        }
        EXPECT_EQ(last, "next");
        EXPECT_EQ(server.AcceptCount(), 1);
    }
}

TEST(HttpReply, DownloadsAreBounded) {
    const std::string page = "HTTP/1.1 404 Not Found\r\nTransfer-Encoding: chunked\r\n\r\n";
    const struct {
        const char* name;
        int code;
        RawReply reply;
        const char* received;
    } rows[] = {
        {"empty", 200, OkReply(""), "."},
        {"as large as allowed", 200, OkReply("12345"), "12345."},
        {"announced larger", kHttpReplyTooLarge, OkReply("123456"), ""},
        {"larger in chunks", kHttpReplyTooLarge, {Chunked("123456")}, "1"},
        {"unfolds to more", kHttpReplyTooLarge, OkReply(kGzip, Coded("gzip")), ""},
        {"coded and unfolds to nothing", kHttpReplyTooLarge,
         OkReply(kGzip.substr(0, 3) + "\x08" + std::string(1100000, 'n'), Coded("gzip")), ""},
        {"error page without an end", 404, {page + "1000000\r\n" + std::string(100000, 'x'), Then::kStall}, "."},
        {"error page that is cut", 404, {page + "9\r\nok", Then::kClose}, "."},
        {"error page in another coding", 404, {RawReplyBytes("404 Not Found", Coded("gzip"), "text")}, "."},
    };
    for (const auto& row : rows) {
        RawServer server({row.reply});
        HttpCall call(server.Url());
        call.handler.SetMaxSize(5);
        EXPECT_EQ(call.SendAs(RequestForm::kDownload), row.code) << row.name;
        EXPECT_EQ(call.received, row.received) << row.name;
    }
    EXPECT_EQ(FileTransferHandler().MaxSize(), 2147483648U);
}

TEST(HttpReply, ADownloadKeepsUpItsPace) {
    using std::chrono::seconds;
    suite::TransferPace pace;
    const auto accept = [&](int second, std::uint64_t size) {
        return pace.Accept(suite::TransferPace::Time(seconds(second)), size);
    };
    EXPECT_TRUE(accept(0, 1) && accept(59, 1) && accept(60, 61438)) << "60 KiB in a minute";
    pace.Excuse(seconds(10));
    EXPECT_TRUE(accept(129, 61439)) << "the handler took ten seconds";
    EXPECT_FALSE(accept(130, 0)) << "a byte too few";
}

}  // namespace

TEST_F(SandboxSession, OverHttpsABodyNeedsALengthOrChunks) {
    CurlHttpLibContext::SetDefaultCertPath((m_folder / "authority.pem").wstring());
    for (const RequestForm form : kRequestForms) {
        for (const std::string& base : {m_sandbox.m_http, m_sandbox.m_https}) {
            m_sandbox.Fault("/routing/v1/remote", R"({"unframed":true})");
            HttpCall call(Wide(base + "/routing/v1/remote"));
            EXPECT_EQ(call.SendAs(form), base == m_sandbox.m_http ? 200 : int{kHttpConnectionBroken});
        }
    }
}
