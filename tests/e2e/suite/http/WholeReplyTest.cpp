#include <gtest/gtest.h>

#include <chrono>

#include "HttpCall.h"
#include "SandboxSession.h"
#include "http/TransferPace.h"

namespace {

constexpr char kText[] = "decoded text";
const std::string kGzip(
    "\x1F\x8B\x08\0\0\0\0\0\x02\x03\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\xF4\x8D\x4C"
    "\x0D\x0C\0\0\0",
    32);
const std::string kZlib("\x78\x9C\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\x1E\x16\x04\xAE", 20);
const std::string kDeflate("\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0", 14);
const std::string kBrotli("\x8B\x05\x80\x64\x65\x63oded text\x03");

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
        {"gzip", CutWithin(kGzip, "x-gzip"), kHttpBadEncoding},
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
