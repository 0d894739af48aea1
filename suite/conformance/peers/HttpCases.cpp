#include "HttpCases.h"

#include <cstdio>

namespace {

using Then = RawReply::Then;

const std::string kGzip(
    "\x1F\x8B\x08\0\0\0\0\0\x02\x03\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\xF4\x8D\x4C"
    "\x0D\x0C\0\0\0",
    32);
const std::string kZlib("\x78\x9C\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0\x1E\x16\x04\xAE", 20);
const std::string kDeflate("\x4B\x49\x4D\xCE\x4F\x49\x4D\x51\x28\x49\xAD\x28\x01\0", 14);
const std::string kBrotli("\x8B\x05\x80\x64\x65\x63oded text\x03");

// 8 MiB of zero bytes.
const std::string kBomb("\x9B\xFF\xFF\x7F\xF8\x27\0\xE2\xB1\x40\x20\xF7\xFE\x0F", 14);

std::string Coded(const std::string& coding) {
    return "Content-Encoding: " + coding + "\r\n";
}

std::string Chunked(const std::string& body, const std::string& headers = "") {
    char size[16];
    std::snprintf(size, sizeof size, "%zX\r\n", body.size() - 1);
    return "HTTP/1.1 200 OK\r\n" + headers + "Transfer-Encoding: chunked\r\n\r\n1;x=y\r\n" + body[0] + "\r\n" + size +
           body.substr(1) + "\r\n0\r\nTrailer: 1\r\n\r\n";
}

// The reply without its last bytes, from none of it to all but one, closed and reset in turn; then as it is.
std::vector<RawReply> CutAtEveryByte(const std::string& reply) {
    std::vector<RawReply> script;
    for (std::size_t size = 0; size < reply.size(); ++size) {
        script.push_back({reply.substr(0, size), size % 2 == 0 ? Then::kClose : Then::kReset});
    }
    script.push_back({reply});
    return script;
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

std::string Fields(std::size_t count) {
    std::string fields;
    for (std::size_t i = 0; i < count; ++i) {
        fields += "N" + std::to_string(i) + ": v\r\n";
    }
    return fields;
}

}  // namespace

std::vector<SentCase> SentCases() {
    const std::wstring largeBody(2 * 1024 * 1024, L'x');
    return {
        {"empty header value", "\r\nAuthorization:\r\n", "?", {{L"Authorization", L""}}},
        {"blank header value", "\r\nuserId:\r\n", "?", {{L"userId", L"  "}}},
        {"header value in UTF-8", "name: \xC3\xA4\xE4\xB8\xAD\r\n", "?", {{L"name", L"\u00E4\u4E2D"}}},
        {"unpaired surrogate", "name: a\xEF\xBF\xBD\r\n", "?", {{L"name", L"a\xD800"}}},
        {"Host of the caller", "\r\nHost: front.example\r\n", "127.0.0.1", {{L"Host", L"front.example"}}},
        {"GET sends no body", "GET / HTTP/1.1\r\n", "null", {}, false, L"null\n"},
        {"GET sends no length", "\r\n\r\n", "Content-", {}, false, L"null\n"},
        {"POST body in UTF-8", "Content-Length: 2\r\n\r\n\xC3\xA4", "Content-Type", {}, true, L"\u00E4"},
        {"POST body with a zero byte", "\r\nContent-Length: 3\r\n", "?", {}, true, std::wstring(L"a\0b", 3)},
        {"empty POST", "POST / HTTP/1.1\r\n", "Content-Type", {}, true},
        {"empty POST has a length", "\r\nContent-Length: 0\r\n", "?", {}, true},
        {"large POST without Expect", "\r\nContent-Length: 2097152\r\n", "Expect", {}, true, largeBody},
        {"caller's length is not believed", "GET / ", "ontent-", {{L"content-length", L"5"}}},
        {"encodings as asked", "\r\naccept-encoding: br, x\r\n", "gzip", {{L"accept-encoding", L"br, x"}}},
        {"nothing asked, no encoding", "GET / ", "Accept-Encoding"},
        {"path escaped once", "GET /%C3%A4%20b%2fc?q=%C3%A4 HTTP", "%25", {}, false, L"", L"/\u00E4 b%2fc?q=\u00E4"},
    };
}

std::vector<RefusedCase> RefusedCases() {
    using namespace std::string_literals;
    return {
        {"control step: nothing wrong", L"a", L"b\tc", L"/", 200},
        {"other control characters", L"a", L"b\x01\x7Fz", L"/x\x01y", 200},
        {"every mark that a name may have", L"!#$%&'*+-.^_`|~09azAZ", L"b", L"/", 200},
        {"one name in two cases", L"x-twice", L"b", L"/"},
        {"CR in a value", L"a", L"b\rc", L"/"},
        {"LF in a value", L"a", L"b\nInjected: 1", L"/"},
        {"NUL in a value", L"a", L"b\0c"s, L"/"},
        {"line break in a name", L"a: b\r\nc", L"d", L"/"},
        {"NUL in a name", L"a\0"s, L"d", L"/"},
        {"colon in a name", L"a:", L"d", L"/"},
        {"blank in a name", L"a b", L"d", L"/"},
        {"slash in a name", L"a/", L"d", L"/"},
        {"brackets in a name", L"a[]", L"d", L"/"},
        {"name outside ASCII", L"\u00E9", L"d", L"/"},
        {"empty name", L"", L"d", L"/"},
        {"CR in the URL", L"a", L"b", L"/x\ry"},
        {"LF in the URL", L"a", L"b", L"/x\ny"},
        {"CR LF in the URL", L"a", L"b", L"/x HTTP/1.1\r\nInjected: 1\r\n"},
        {"NUL in the URL", L"a", L"b", L"/x\0y"s},
    };
}

std::vector<CutCase> CutCases() {
    return {
        {"length", CutAtEveryByte(OkReply(kCutText, "A: b\r\n c\r\n").bytes), kHttpConnectionBroken},
        {"chunks", CutAtEveryByte(Chunked(kCutText)), kHttpConnectionBroken},
        {"gzip in chunks", CutAtEveryByte(Chunked(kGzip, Coded("x-gzip"))), kHttpConnectionBroken},
        {"behind an interim reply", CutAtEveryByte("HTTP/1.1 103 E\r\nA: b\r\n\r\n" + OkReply(kCutText).bytes),
         kHttpConnectionBroken},
        {"gzip", CutWithin(kGzip, "gzip"), kHttpBadEncoding},
        {"deflate", CutWithin(kZlib, "identity, Deflate"), kHttpBadEncoding},
        {"raw deflate", CutWithin(kDeflate, "deflate"), kHttpBadEncoding},
        {"brotli", CutWithin(kBrotli, "br"), kHttpBadEncoding},
    };
}

std::vector<ReplyCase> ReplyCases() {
    constexpr int kBroken = kHttpConnectionBroken;
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunks = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string moved = "HTTP/1.1 302 Found\r\nLocation: /next\r\n";
    return {
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
}

std::vector<DownloadCase> DownloadCases() {
    const std::string page = "HTTP/1.1 404 Not Found\r\nTransfer-Encoding: chunked\r\n\r\n";
    return {
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
}
