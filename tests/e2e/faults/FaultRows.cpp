#include "FaultRows.h"

#include <HttpLib.h>

namespace {

using Then = RawReply::Then;

constexpr int kBroken = kHttpConnectionBroken;
const std::string kOk = "HTTP/1.1 200 OK\r\n";
const std::string kLength = "Content-Length: <n>\r\n";
const std::string kGood = kOk + kLength + "\r\n<b>";
const std::string kChunked = "Transfer-Encoding: chunked\r\n\r\n";
const std::string kChunks = kOk + kChunked;
const std::string kChunk = "<x>\r\n<b>\r\n";
const std::string kDeflate = kOk + "Content-Encoding: deflate\r\n";

// Nothing under "gzip".
const std::string kGzip("\x1F\x8B\x08\0\0\0\0\0\x02\x03\x03\0\0\0\0\0\0\0\0\0", 20);

// 8 MiB of zero bytes under "br".
const std::string kBomb("\x9B\xFF\xFF\x7F\xF8\x27\0\xE2\xB1\x40\x20\xF7\xFE\x0F", 14);

std::string Repeated(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

std::string WithHeaders(const std::string& headers) { return kOk + headers + kLength + "\r\n<b>"; }

std::string Moved(const std::string& status, const std::string& target) {
    return "HTTP/1.1 " + status + " Moved\r\nLocation: " + target + "\r\n" + kLength + "\r\n<b>";
}

void Append(std::vector<Fault>& rows, const std::vector<Fault>& more) {
    rows.insert(rows.end(), more.begin(), more.end());
}

std::vector<Fault> Statuses() {
    std::vector<Fault> rows;
    for (const int status : {201, 202, 203, 206, 226, 300, 305, 306, 400, 401, 402, 403, 404, 405, 406, 407,
                             408, 409, 410, 411, 412, 413, 414, 415, 416, 417, 421, 422, 423, 425, 426, 428,
                             429, 431, 451, 500, 501, 502, 503, 504, 505, 507, 508, 511, 599, 600, 999}) {
        rows.emplace_back("status " + std::to_string(status), status,
                          "HTTP/1.1 " + std::to_string(status) + " X\r\n" + kLength + "\r\n<b>");
    }
    for (const int status : {204, 205, 304}) {
        rows.emplace_back(
            "status " + std::to_string(status), status,
            "HTTP/1.1 " + std::to_string(status) + " X\r\n" + (status == 205 ? "Content-Length: 0\r\n" : "") + "\r\n");
    }
    for (const int status : {301, 302, 303, 307, 308}) {
        rows.emplace_back("status " + std::to_string(status) + " without a target", status,
                          "HTTP/1.1 " + std::to_string(status) + " X\r\n" + kLength + "\r\n<b>");
    }
    for (const int status : {100, 101, 102, 103, 199}) {
        rows.emplace_back("status " + std::to_string(status) + " alone", kBroken,
                          "HTTP/1.1 " + std::to_string(status) + " X\r\n\r\n", Then::kClose);
    }
    return rows;
}

}  // namespace

std::vector<Fault> FaultRows() {
    const std::string errorPage = "HTTP/1.1 503 X\r\n" + kChunked;
    std::vector<Fault> rows = {
        {"control: whole", 200, kGood},
        {"control: whole, then closed", 200, kGood, Then::kClose},
        {"control: whole, then reset", 200, kGood, Then::kReset},
        {"control: chunks", 200, kChunks + kChunk + "0\r\n\r\n"},
        {"control: HTTP/1.0", 200, "HTTP/1.0 200 OK\r\n" + kLength + "\r\n<b>"},
        {"control: to the end of the connection", 200, kOk + "\r\n<b>", Then::kClose},
        {"control: deflate", 200, kDeflate + "Content-Length: <m>\r\n\r\n<d>"},
        {"control: in two packets", 200, kOk + kLength + "\r\n", Then::kKeep, "<b>"},

        {"behind interim replies", 200, Repeated("HTTP/1.1 103 Early\r\nContent-Length: 9\r\n\r\n", 20) + kGood},
        {"interim replies without end", kHttpReplyTooLarge, "", Then::kRepeat,
         Repeated("HTTP/1.1 103 Early\r\n\r\n", 999)},
        Fault("status 204 with a body", 204, "HTTP/1.1 204 No\r\nContent-Encoding: gzip\r\n\r\n", Then::kKeep, "evil"),

        // The head
        {"closed before the reply", kBroken, "", Then::kClose},
        {"reset before the reply", kBroken, "", Then::kReset},
        {"no HTTP", kBroken, "hello\r\n\r\n", Then::kClose},
        {"zero bytes", kBroken, std::string(64, '\0'), Then::kClose},
        {"TLS alert", kBroken, std::string("\x15\x03\x01\0\x02\x02\x46", 7), Then::kClose},
        {"HTTP/2", kBroken, "HTTP/2 200\r\n" + kLength + "\r\n<b>"},
        {"HTTP/2.0", kBroken, "HTTP/2.0 200 OK\r\n" + kLength + "\r\n<b>"},
        {"garbled version", kBroken, "HTTP/x 200 OK\r\n" + kLength + "\r\n<b>"},
        {"status of two digits", kBroken, "HTTP/1.1 20 OK\r\n" + kLength + "\r\n<b>"},
        {"status of four digits", kBroken, "HTTP/1.1 2000 OK\r\n" + kLength + "\r\n<b>"},
        {"status that is no number", kBroken, "HTTP/1.1 2OO OK\r\n" + kLength + "\r\n<b>"},
        {"status without a reason", 200, "HTTP/1.1 200\r\n" + kLength + "\r\n<b>"},
        {"lines that end in LF", 200, "HTTP/1.1 200 OK\nContent-Length: <n>\n\n<b>"},
        {"header without a colon", kBroken, kOk + kLength + "x\r\n\r\n<b>"},
        {"header with a zero byte", kBroken, WithHeaders(std::string("A: b\0c\r\n", 8))},
        {"folded header", 200, WithHeaders("A: b\r\n c\r\n\td\r\n")},
        {"blank-led first header", 200, WithHeaders(" A: b\r\n")},
        {"blank line of blanks", 200, WithHeaders("A: b\r\n \r\n")},
        {"a thousand headers", 200, WithHeaders(Repeated("A: b\r\n", 999))},
        {"one header more", kHttpReplyTooLarge, WithHeaders(Repeated("A: b\r\n", 1000))},
        {"300 KB of headers", kHttpReplyTooLarge, WithHeaders(Repeated("A: " + std::string(30000, 'x') + "\r\n", 10))},
        {"line beyond 100 KB", kHttpReplyTooLarge, WithHeaders("A: " + std::string(102400, 'x') + "\r\n")},
        {"headers without end", kHttpReplyTooLarge, kOk, Then::kRepeat, Repeated("A: b\r\n", 999)},
        {"folded header without end", kHttpReplyTooLarge, kOk + "A: b\r\n", Then::kRepeat, Repeated(" c\r\n", 999)},
        {"line without end", kHttpReplyTooLarge, kOk + "A: ", Then::kRepeat, std::string(4096, 'x')},
        {"status line without end", kHttpReplyTooLarge, "HTTP/1.1 200 ", Then::kRepeat, std::string(4096, 'x')},

        // Where the body ends
        {"length too long", kBroken, kOk + "Content-Length: 9<n>\r\n\r\n<b>", Then::kClose},
        {"length too long, reset", kBroken, kOk + "Content-Length: 9<n>\r\n\r\n<b>", Then::kReset},
        Fault("length too short", 200, kOk + "Content-Length: 1\r\n\r\n{<b>").Brings("{"),
        Fault("length of nothing", 200, kOk + "Content-Length: 0\r\n\r\n<b>").Brings(""),
        {"one length twice", 200, WithHeaders(kLength)},
        {"two lengths", kBroken, WithHeaders("Content-Length: 1\r\n")},
        {"list of lengths", kBroken, kOk + "Content-Length: <n>, <n>\r\n\r\n<b>"},
        {"negative length", kBroken, kOk + "Content-Length: -<n>\r\n\r\n<b>", Then::kClose},
        {"signed length", kBroken, kOk + "Content-Length: +<n>\r\n\r\n<b>"},
        {"hexadecimal length", kBroken, kOk + "Content-Length: 0x<x>\r\n\r\n<b>"},
        {"empty length", kBroken, kOk + "Content-Length:\r\n\r\n<b>", Then::kClose},
        {"huge length", kHttpReplyTooLarge, kOk + "Content-Length: 99999999999999999999\r\n\r\n<b>"},
        {"length beyond every limit", kHttpReplyTooLarge, kOk + "Content-Length: 9999999999\r\n\r\n<b>"},
        {"blank before the colon", kBroken, kOk + "Content-Length : <n>\r\n\r\n<b>", Then::kClose},
        {"folded length", kBroken, kOk + "Content-Length: <n>\r\n 0\r\n\r\n<b>"},
        {"length and chunks", kBroken, kOk + kLength + kChunked + kChunk + "0\r\n\r\n"},
        {"chunks and length", kBroken,
         kOk + "Transfer-Encoding: chunked\r\n" + kLength + "\r\n" + kChunk + "0\r\n\r\n"},
        {"chunked twice", kBroken, kOk + "Transfer-Encoding: chunked\r\n" + kChunked + kChunk + "0\r\n\r\n"},
        {"other transfer coding", kBroken, kOk + "Transfer-Encoding: gzip, chunked\r\n\r\n" + kChunk + "0\r\n\r\n"},
        {"end of the connection by a reset", kBroken, kOk + "\r\n<b>", Then::kReset},
        Fault("text without end", kHttpReplyTooLarge, kOk + "\r\n<b>", Then::kRepeat, std::string(65536, 'x'))
            .ForDownloads(0),
        Fault("error page without end", kHttpReplyTooLarge, errorPage, Then::kRepeat,
              "10000\r\n" + std::string(65536, 'x') + "\r\n")
            .ForDownloads(503),
        Fault("error page that is cut", kBroken, errorPage + "99\r\n<b>", Then::kClose).ForDownloads(503),
        Fault("text beyond 40,959 bytes", 200, kOk + "\r\n<b>" + std::string(40960, ' '), Then::kClose)
            .Brings("")
            .ForShortTexts(),
        {"bytes behind the length", 200, kGood + kGood},
        {"bytes behind the chunks", 200, kChunks + kChunk + "0\r\n\r\n" + kGood},
        {"later bytes behind the chunks", 200, kChunks + kChunk + "0\r\n\r\n", Then::kKeep, kGood},

        // Chunks
        {"chunk size with an extension", 200, kChunks + "<x>;a=b\r\n<b>\r\n0\r\nA: b\r\n\r\n"},
        {"chunk size that is none", kBroken, kChunks + "-<x>\r\n<b>\r\n0\r\n\r\n"},
        {"chunk size without digits", kBroken, kChunks + "\r\n<b>\r\n0\r\n\r\n"},
        {"chunk longer than its size", kBroken, kChunks + "1\r\n<b>\r\n0\r\n\r\n"},
        {"chunk shorter than its size", kBroken, kChunks + "F<x>\r\n<b>\r\n0\r\n\r\n", Then::kClose},
        {"chunk without its line end", kBroken, kChunks + "<x>\r\n<b>0\r\n\r\n"},
        {"huge chunk", kBroken, kChunks + "FFFFFFFFFFFFFFF0\r\n<b>"},
        {"no last chunk", kBroken, kChunks + kChunk, Then::kClose},
        {"no end of the trailers", kBroken, kChunks + kChunk + "0\r\nA: b\r\n", Then::kReset},
        Fault("chunks of nothing", 200, kChunks + "0\r\n\r\n").Brings(""),
        Fault("chunks without end", kHttpReplyTooLarge, kChunks + kChunk, Then::kRepeat,
              "10000\r\n" + std::string(65536, 'x') + "\r\n")
            .ForDownloads(0),
        {"chunk extension without end", kHttpReplyTooLarge, kChunks + "1;", Then::kRepeat, std::string(4096, 'x')},
        {"chunk size without end", kBroken, kChunks, Then::kRepeat, std::string(4096, '0')},
        {"trailers without end", kHttpReplyTooLarge, kChunks + kChunk + "0\r\n", Then::kRepeat,
         Repeated("A: b\r\n", 999)},

        // Encodings
        {"deflate that is cut", kHttpBadEncoding, kDeflate + "Content-Length: <n>\r\n\r\n<d>", Then::kClose},
        {"deflate with a byte behind it", kHttpBadEncoding, kDeflate + "\r\n<d>x", Then::kClose},
        {"deflate that is none", kHttpBadEncoding, kDeflate + kLength + "\r\n<b>"},
        {"gzip that is none", kHttpBadEncoding, WithHeaders("Content-Encoding: gzip\r\n")},
        {"brotli that is none", kHttpBadEncoding, WithHeaders("Content-Encoding: br\r\n")},
        {"unknown encoding", kHttpBadEncoding, WithHeaders("Content-Encoding: x-unheard-of\r\n")},
        {"two encodings", kHttpBadEncoding, WithHeaders("Content-Encoding: deflate, gzip\r\n")},
        {"two encodings, one by one", kHttpBadEncoding,
         WithHeaders("Content-Encoding: deflate\r\nContent-Encoding: deflate\r\n")},
        {"two gzip members", kHttpBadEncoding,
         kOk + "Content-Encoding: gzip\r\n" + "Content-Length: 40\r\n\r\n" + kGzip + kGzip},
        {"encoding of nothing", kHttpBadEncoding, kDeflate + "Content-Length: 0\r\n\r\n"},
        {"bomb", kHttpReplyTooLarge, kOk + "Content-Encoding: br\r\nContent-Length: 14\r\n\r\n" + kBomb},
        {"bomb in chunks", kHttpReplyTooLarge,
         kOk + "Content-Encoding: br\r\n" + kChunked + "E\r\n" + kBomb + "\r\n0\r\n\r\n"},
        Fault("encoding that unfolds to nothing", kHttpReplyTooLarge, kDeflate + "\r\n", Then::kRepeat,
              Repeated(std::string("\0\0\0\xFF\xFF", 5), 10000))
            .ForDownloads(0),

        // Redirects
        {"302", 200, Moved("302", "/next")},
        {"303, relative", 200, Moved("303", "next?a#b")},
        {"307", 200, Moved("307", "/next")},
        {"308 with blanks", 200, Moved("308", "/next a b")},
        {"redirect that is cut", 200, "HTTP/1.1 302 X\r\nLocation: /next\r\nContent-Length: 9\r\n\r\nx", Then::kClose},
        {"redirect with a large body", 200, "HTTP/1.1 302 X\r\nLocation: /next\r\nContent-Length: 99999\r\n\r\nx"},
        {"redirect without a length", 200, "HTTP/1.1 302 X\r\nLocation: /next\r\n\r\nx"},
        {"redirect without end", 200, "HTTP/1.1 302 X\r\nLocation: /next\r\n" + kChunked, Then::kRepeat,
         Repeated("1\r\nx\r\n", 999)},
        {"redirect with malformed chunks", 200, "HTTP/1.1 302 X\r\nLocation: /next\r\n" + kChunked + "x"},
        {"redirect in a circle", kHttpRedirectRefused, Moved("302", "/loop")},
        Fault("redirect to another host", 200, Moved("307", "<other>/next")).ForPosts(kHttpRedirectRefused),
        Fault("redirect to nobody", kHttpConnectFailed, Moved("303", "<nobody>/next")),
        {"redirect to no name", kHttpNameNotResolved, Moved("303", "http://no-such-host.invalid/next")},
        {"redirect to ftp", kHttpRedirectRefused, Moved("302", "ftp://127.0.0.1/next")},
        {"redirect to a file", kHttpRedirectRefused, Moved("302", "file:///c:/next")},
        {"redirect to a script", kHttpRedirectRefused, Moved("302", "javascript:next")},
        {"redirect with three slashes", kHttpNameNotResolved, Moved("302", "http:///no-such-host.invalid/next")},
        {"redirect to no port", kHttpRedirectRefused, Moved("302", "http://127.0.0.1:99999/next")},

        // Ways that lead nowhere
        Fault("refused", kHttpConnectFailed).At("<nobody>"),
        Fault("no name", kHttpNameNotResolved).At("http://no-such-host.invalid"),
        Fault("TLS to nobody", kHttpConnectFailed).At("https<nobody>"),
        Fault("control: through a proxy", 200, kGood).By("http"),
        Fault("proxy asks for a login", 407, "HTTP/1.1 407 X\r\nProxy-Authenticate: Basic\r\n" + kLength + "\r\n<b>")
            .By("http"),
        Fault("proxy cuts the reply", kBroken, kOk + kLength + "\r\n", Then::kClose).By("http"),
        Fault("proxy resets", kBroken, "", Then::kReset).By("http"),
        Fault("proxy refuses the connection", kHttpConnectFailed).At("http://platform.invalid").Through("<nobody>"),
        Fault("proxy without a name", kHttpNameNotResolved)
            .At("http://platform.invalid")
            .Through("http://no-such-host.invalid:1"),
        Fault("proxy of an unknown kind", kHttpConnectFailed)
            .At("http://platform.invalid")
            .Through("socks9://127.0.0.1:1"),
        Fault("proxy refuses the tunnel", kHttpConnectFailed, "HTTP/1.1 403 X\r\nContent-Length: 0\r\n\r\n")
            .By("https"),
        Fault("proxy asks for a login to the tunnel", kHttpConnectFailed,
              "HTTP/1.1 407 X\r\nProxy-Authenticate: Basic\r\nContent-Length: 0\r\n\r\n")
            .By("https"),
        Fault("proxy cuts its answer", kBroken, "HTTP/1.1 200", Then::kClose).By("https"),
        Fault("proxy answers with no HTTP", kBroken, "hello\r\n\r\n", Then::kClose).By("https"),
        Fault("tunnel that ends at once", kHttpTlsFailed, "HTTP/1.1 200 OK\r\n\r\n", Then::kClose).By("https"),
        Fault("tunnel to no TLS", kHttpTlsFailed, "HTTP/1.1 200 OK\r\n\r\nhello\r\n\r\n", Then::kClose).By("https"),
    };
    Append(rows, Statuses());
    return rows;
}

std::vector<Fault> CutRows() {
    return {
        {"length", kBroken, kGood},
        {"interim reply, chunks, deflate", kBroken,
         "HTTP/1.1 103 E\r\nA: b\r\n\r\n" + kDeflate + kChunked + "1;a=b\r\n\x01\r\n<y>\r\n<e>\r\n0\r\nA: b\r\n\r\n"}};
}

std::vector<Fault> StallRows() {
    const std::string inLength = kOk + "Content-Length: 9\r\n\r\n";
    std::vector<Fault> rows = {{"trickled head", kHttpTimeout, kOk + "A: b", Then::kTrickle, "x"}};
    for (const std::string& sent :
         {std::string(), std::string("HTTP/1.1 2"), "HTTP/1.1 103 E\r\n\r\n" + kOk, inLength, inLength + "{",
          kOk + "\r\n{}", kChunks + "2\r\n{}", kChunks + "2\r\n{}\r\n", kChunks + "2\r\n{}\r\n0\r\nA: b\r\n"}) {
        rows.emplace_back("silent behind \"" + sent + "\"", kHttpTimeout, sent, Then::kStall);
    }
    return rows;
}
