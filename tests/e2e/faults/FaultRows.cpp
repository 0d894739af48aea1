#include "FaultRows.h"

#include <HttpLib.h>

#include <sstream>

namespace {

constexpr auto kClose = RawReply::Then::kClose;
constexpr auto kReset = RawReply::Then::kReset;
constexpr auto kRepeat = RawReply::Then::kRepeat;
constexpr auto kStall = RawReply::Then::kStall;
constexpr auto kKeep = RawReply::Then::kKeep;

constexpr int kBroken = kHttpConnectionBroken;
constexpr int kLarge = kHttpReplyTooLarge;
constexpr int kCoding = kHttpBadEncoding;
constexpr int kRedirect = kHttpRedirectRefused;

// Nothing under "gzip", and 8 MiB of zero bytes under "br".
const std::string kGzip("\x1F\x8B\x08\0\0\0\0\0\x02\x03\x03\0\0\0\0\0\0\0\0\0", 20);
const std::string kBomb("\x9B\xFF\xFF\x7F\xF8\x27\0\xE2\xB1\x40\x20\xF7\xFE\x0F", 14);

std::string Repeated(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

void AddStatuses(std::vector<Fault>& rows, const std::string& statuses, const std::string& rest, int code = 0) {
    std::istringstream list(statuses);
    for (std::string status; list >> status;) {
        rows.push_back({"status " + status, code != 0 ? code : std::stoi(status), "HTTP/1.1 " + status + rest, kClose});
    }
}

}  // namespace

// NOLINTNEXTLINE(readability-function-size): one table
std::vector<Fault> FaultRows() {
    std::vector<Fault> rows = {
        {"control: whole", 200, "<ok><l>|<b>"},
        {"control: whole, then closed", 200, "<ok><l>|<b>", kClose},
        {"control: whole, then reset", 200, "<ok><l>|<b>", kReset},
        {"control: chunks", 200, "<ok><c><k>0||"},
        {"control: HTTP/1.0", 200, "HTTP/1.0 200 OK|<l>|<b>"},
        {"control: to the end of the connection", 200, "<ok>|<b>", kClose},
        {"control: deflate", 200, "<ok>Content-Encoding: deflate|Content-Length: <m>||<d>"},
        {"control: in two packets", 200, "<ok><l>|", kKeep, "<b>"},

        // The head
        {"behind interim replies", 200, Repeated("HTTP/1.1 103 E|Content-Length: 9||", 20) + "<ok><l>|<b>"},
        {"interim replies without end", kLarge, "", kRepeat, "HTTP/1.1 103 E||"},
        {"body behind a 204", 204, "HTTP/1.1 204 No|Content-Encoding: gzip||", kKeep, "evil"},
        {"closed before the reply", kBroken, "", kClose},
        {"reset before the reply", kBroken, "", kReset},
        {"no HTTP", kBroken, "hello||", kClose},
        {"zero bytes", kBroken, std::string(64, '\0'), kClose},
        {"TLS alert", kBroken, std::string("\x15\x03\x01\0\x02\x02\x46", 7), kClose},
        {"HTTP/2", kBroken, "HTTP/2 200|<l>|<b>"},
        {"HTTP/2.0", kBroken, "HTTP/2.0 200 OK|<l>|<b>"},
        {"garbled version", kBroken, "HTTP/x 200 OK|<l>|<b>"},
        {"status of two digits", kBroken, "HTTP/1.1 20 OK|<l>|<b>"},
        {"status of four digits", kBroken, "HTTP/1.1 2000 OK|<l>|<b>"},
        {"status that is no number", kBroken, "HTTP/1.1 2OO OK|<l>|<b>"},
        {"status without a reason", 200, "HTTP/1.1 200|<l>|<b>"},
        {"lines that end in LF", 200, "HTTP/1.1 200 OK\nContent-Length: <n>\n\n<b>"},
        {"header without a colon", kBroken, "<ok><l>x||<b>"},
        {"header with a zero byte", kBroken, "<ok>A: b" + std::string(1, '\0') + "c|<l>|<b>"},
        {"folded header", 200, "<ok>A: b| c|\td|<l>|<b>"},
#if defined(_WIN32)  // elsewhere libcurl is the distribution's own, whose header store reads freed memory then
        {"blank-led first header", 200, "<ok> A: b|<l>|<b>"},
#endif
        {"line of a blank", 200, "<ok>A: b| |<l>|<b>"},
        {"a thousand headers", 200, "<ok>" + Repeated("A: b|", 999) + "<l>|<b>"},
        {"one header more", kLarge, "<ok>" + Repeated("A: b|", 1000) + "<l>|<b>"},
        {"300 KB of headers", kLarge, "<ok>" + Repeated("A: " + std::string(30000, 'x') + "|", 10) + "<l>|<b>"},
        {"line beyond 100 KB", kLarge, "<ok>A: " + std::string(102400, 'x') + "|<l>|<b>"},
        {"headers without end", kLarge, "<ok>", kRepeat, "A: b|"},
        {"folded header without end", kLarge, "<ok>A: b|", kRepeat, " c|"},
        {"line without end", kLarge, "<ok>A: ", kRepeat, "x"},
        {"status line without end", kLarge, "HTTP/1.1 200 ", kRepeat, "x"},

        // Where the body ends
        {"length too long", kBroken, "<ok>Content-Length: 9<n>||<b>", kClose},
        {"length too long, reset", kBroken, "<ok>Content-Length: 9<n>||<b>", kReset},
        Fault{"length too short", 200, "<ok>Content-Length: 1||{<b>"}.Brings("{"),
        Fault{"length of nothing", 200, "<ok>Content-Length: 0||<b>"}.Brings(""),
        {"one length twice", 200, "<ok><l><l>|<b>"},
        {"two lengths", kBroken, "<ok>Content-Length: 1|<l>|<b>"},
        {"list of lengths", kBroken, "<ok>Content-Length: <n>, <n>||<b>"},
        {"negative length", kBroken, "<ok>Content-Length: -<n>||<b>", kClose},
        {"signed length", kBroken, "<ok>Content-Length: +<n>||<b>"},
        {"hexadecimal length", kBroken, "<ok>Content-Length: 0x<x>||<b>"},
        {"empty length", kBroken, "<ok>Content-Length:||<b>", kClose},
        {"huge length", kLarge, "<ok>Content-Length: 99999999999999999999||<b>"},
        {"length beyond every limit", kLarge, "<ok>Content-Length: 9999999999||<b>"},
        {"blank before the colon", kBroken, "<ok>Content-Length : <n>||<b>", kClose},
        {"folded length", kBroken, "<ok>Content-Length: <n>| 0||<b>"},
        {"length and chunks", kBroken, "<ok><l><c><k>0||"},
        {"chunks and length", kBroken, "<ok>Transfer-Encoding: chunked|<l>|<k>0||"},
        {"chunked twice", kBroken, "<ok>Transfer-Encoding: chunked|<c><k>0||"},
        {"other transfer coding", kBroken, "<ok>Transfer-Encoding: gzip, chunked||<k>0||"},
        {"end of the connection by a reset", kBroken, "<ok>|<b>", kReset},
        Fault{"text without end", kLarge, "<ok>|<b>", kRepeat, "x"}.NotForDownloads(),
        Fault{"text beyond its room", 200, "<ok>|<b>" + std::string(40960, ' '), kClose}.Brings("").With(
            &Fault::hasRoomLimit, true),
        Fault{"error page without end", kLarge, "HTTP/1.1 503 X|<c>", kRepeat, "1|x|"}.ForDownloads(503),
        Fault{"error page that is cut", kBroken, "HTTP/1.1 503 X|<c>99|<b>", kClose}.ForDownloads(503),
        {"bytes behind the length", 200, "<ok><l>|<b><ok><l>|<b>"},
        {"bytes behind the chunks", 200, "<ok><c><k>0||<ok><l>|<b>"},
        {"later bytes behind the chunks", 200, "<ok><c><k>0||", kKeep, "<ok><l>|<b>"},

        // Chunks
        {"chunk size with an extension", 200, "<ok><c><x>;a=b|<b>|0|A: b||"},
        {"chunk size that is none", kBroken, "<ok><c>-<k>0||"},
        {"chunk size without digits", kBroken, "<ok><c>|<b>|0||"},
        {"chunk longer than its size", kBroken, "<ok><c>1|<b>|0||"},
        {"chunk shorter than its size", kBroken, "<ok><c>F<k>0||", kClose},
        {"chunk without its line end", kBroken, "<ok><c><x>|<b>0||"},
        {"huge chunk", kBroken, "<ok><c>FFFFFFFFFFFFFFF0|<b>"},
        {"no last chunk", kBroken, "<ok><c><k>", kClose},
        {"no end of the trailers", kBroken, "<ok><c><k>0|A: b|", kReset},
        Fault{"chunks of nothing", 200, "<ok><c>0||"}.Brings(""),
        Fault{"chunks without end", kLarge, "<ok><c><k>", kRepeat, "<k>"}.NotForDownloads(),
        {"chunk extension without end", kLarge, "<ok><c>1;", kRepeat, "x"},
        {"chunk size without end", kBroken, "<ok><c>", kRepeat, "0"},
        {"trailers without end", kLarge, "<ok><c><k>0|", kRepeat, "A: b|"},

        // Encodings
        {"deflate that is cut", kCoding, "<ok>Content-Encoding: deflate|<l>|<d>", kClose},
        {"deflate with a byte behind it", kCoding, "<ok>Content-Encoding: deflate||<d>x", kClose},
        {"deflate that is none", kCoding, "<ok>Content-Encoding: deflate|<l>|<b>"},
        {"gzip that is none", kCoding, "<ok>Content-Encoding: gzip|<l>|<b>"},
        {"brotli that is none", kCoding, "<ok>Content-Encoding: br|<l>|<b>"},
        {"two gzip members", kCoding, "<ok>Content-Encoding: gzip|Content-Length: 40||" + kGzip + kGzip},
        {"unknown encoding", kCoding, "<ok>Content-Encoding: x-unheard-of|<l>|<b>"},
        {"two encodings", kCoding, "<ok>Content-Encoding: deflate, gzip|<l>|<b>"},
        {"two encodings, one by one", kCoding, "<ok>Content-Encoding: gzip|Content-Encoding: gzip|<l>|<b>"},
        {"encoding of nothing", kCoding, "<ok>Content-Encoding: deflate|Content-Length: 0||"},
        {"bomb", kLarge, "<ok>Content-Encoding: br|Content-Length: 14||" + kBomb},
        {"bomb in chunks", kLarge, "<ok>Content-Encoding: br|<c>E|" + kBomb + "|0||"},
        Fault{"encoding that unfolds to nothing", kLarge, "<ok>Content-Encoding: deflate||", kRepeat,
              std::string("\0\0\0\xFF\xFF", 5)}
            .NotForDownloads(),

        // Redirects
        {"302", 200, "HTTP/1.1 302 X|Location: /next|<l>|<b>"},
        {"303, relative", 200, "HTTP/1.1 303 X|Location: next?a#b|<l>|<b>"},
        {"307", 200, "HTTP/1.1 307 X|Location: /next|<l>|<b>"},
        {"308 with blanks", 200, "HTTP/1.1 308 X|Location: /next a b|<l>|<b>"},
        {"redirect that is cut", 200, "HTTP/1.1 302 X|Location: /next|Content-Length: 9||x", kClose},
        {"redirect with a large body", 200, "HTTP/1.1 302 X|Location: /next|Content-Length: 99999||x"},
        {"redirect without a length", 200, "HTTP/1.1 302 X|Location: /next||x"},
        {"redirect without end", 200, "HTTP/1.1 302 X|Location: /next|<c>", kRepeat, "1|x|"},
        {"redirect with malformed chunks", 200, "HTTP/1.1 302 X|Location: /next|<c>x"},
        {"redirect in a circle", kRedirect, "HTTP/1.1 302 X|Location: /loop|<l>|<b>"},
        Fault{"redirect to another host", 200, "HTTP/1.1 307 X|Location: <other>/next||"}.ForPosts(kRedirect),
        {"redirect to nobody", kHttpConnectFailed, "HTTP/1.1 303 X|Location: <nobody>/next||"},
        {"redirect to no name", kHttpNameNotResolved, "HTTP/1.1 303 X|Location: http://no-such-host.invalid/next||"},
        {"redirect with three slashes", kHttpNameNotResolved,
         "HTTP/1.1 302 X|Location: http:///no-such.invalid/next||"},
        {"redirect to ftp", kRedirect, "HTTP/1.1 302 X|Location: ftp://127.0.0.1/next||"},
        {"redirect to a file", kRedirect, "HTTP/1.1 302 X|Location: file:///c:/next||"},
        {"redirect to a script", kRedirect, "HTTP/1.1 302 X|Location: javascript:next||"},
        {"redirect to no port", kRedirect, "HTTP/1.1 302 X|Location: http://127.0.0.1:99999/next||"},

        // The way
        Fault{"refused", kHttpConnectFailed}.At("<nobody>"),
        Fault{"no name", kHttpNameNotResolved}.At("http://no-such-host.invalid"),
        Fault{"TLS to nobody", kHttpConnectFailed}.At("https<nobody>"),
        Fault{"control: proxy", 200, "<ok><l>|<b>"}.ToHttp(),
        Fault{"proxy wants a login", 407, "HTTP/1.1 407 X|Proxy-Authenticate: Basic|<l>|<b>"}.ToHttp(),
        Fault{"proxy cuts the reply", kBroken, "<ok><l>|", kClose}.ToHttp(),
        Fault{"proxy resets", kBroken, "", kReset}.ToHttp(),
        Fault{"proxy refused", kHttpConnectFailed}.At("http://platform.invalid", "<nobody>"),
        Fault{"proxy without a name", kHttpNameNotResolved}.At("http://platform.invalid", "no-such-host.invalid:1"),
        Fault{"unknown proxy", kHttpConnectFailed}.At("http://platform.invalid", "socks9://127.0.0.1:1"),
        Fault{"no tunnel", kHttpConnectFailed, "HTTP/1.1 403 X|Content-Length: 0||"}.ToHttps(),
        Fault{"tunnel wants a login", kHttpConnectFailed, "HTTP/1.1 407 X|Content-Length: 0||"}.ToHttps(),
        Fault{"proxy cuts its answer", kBroken, "HTTP/1.1 200", kClose}.ToHttps(),
        Fault{"proxy answers with no HTTP", kBroken, "hello||", kClose}.ToHttps(),
        Fault{"tunnel that ends at once", kHttpTlsFailed, "HTTP/1.1 200 OK||", kClose}.ToHttps(),
        Fault{"tunnel to no TLS", kHttpTlsFailed, "HTTP/1.1 200 OK||hello||", kClose}.ToHttps(),
    };
    AddStatuses(rows, "000 100 101 102 103 199", "||", kBroken);
    AddStatuses(rows, "204 304", "||");
    AddStatuses(rows, "201 202 203 206 226 300 301 302 303 305 306 307 308", " X|<l>|<b>");
    AddStatuses(rows, "400 401 402 403 404 405 406 407 408 409 410 411 412 413 414 415 416 417", " X|<l>|<b>");
    AddStatuses(rows, "421 422 423 425 426 428 429 431 451 500 501 502 503 504 505 507 511 599 999", " X|<l>|<b>");
    return rows;
}

std::vector<Fault> CutRows() {
    return {{"length", kBroken, "<ok>A: b| c|<l>|<b>"},
            {"interim reply, deflate, chunks", kBroken,
             "HTTP/1.1 103 E|A: b||<ok>Content-Encoding: deflate|<c>1;a=b|\x01|<y>|<e>|0|A: b||"}};
}

std::vector<Fault> StallRows() {
    std::vector<Fault> rows = {{"trickled head", kHttpTimeout, "<ok>A: b", RawReply::Then::kTrickle, "x"}};
    for (const char* sent : {"", "HTTP/1.1 2", "HTTP/1.1 103 E||<ok>", "<ok><l>|", "<ok><l>|{", "<ok>|{}",
                             "<ok><c>2|{}", "<ok><c>2|{}|", "<ok><c>2|{}|0|A: b|"}) {
        rows.push_back({"silent behind " + std::string(sent), kHttpTimeout, sent, kStall});
    }
    return rows;
}
