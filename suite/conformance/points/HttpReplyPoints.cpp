#include "Examination.h"
#include "HttpCases.h"

namespace conformance {

namespace {

using Then = RawReply::Then;

constexpr std::size_t kLargestText = 16 * 1024 * 1024;

void ExamineWholeReplies(Examination& examination) {
    for (const CutCase& row : CutCases()) {
        examination.Point(std::string("a reply counts from its last byte on: ") + row.name, [&row] {
            for (const RequestForm form : {RequestForm::kHeaders, RequestForm::kDownload}) {
                RawServer server(row.script);
                for (std::size_t size = 0; size < row.script.size(); ++size) {
                    const bool isWhole = size + 1 == row.script.size();
                    const std::string place =
                        ", cut at " + std::to_string(size) + " of the row's " + std::to_string(row.script.size() - 1);
                    HttpCall call(server.Url());
                    RequireEqual(call.SendAs(form), isWhole ? 200 : row.code, "the code" + place);
                    RequireEqual(call.BodyOf(form), std::string(isWhole ? kCutText : ""), "the text" + place);
                    Require(isWhole || call.received.find('.') == std::string::npos,
                            "the handler was told of the end" + place);
                    Require(isWhole || form == RequestForm::kDownload || call.headers.empty(),
                            "there are headers" + place);
                }
                RequireEqual(server.Requests().size(), row.script.size(), "the number of requests");
            }
        });
    }
    for (const ReplyCase& row : ReplyCases()) {
        examination.Point((row.code < 0 ? "refused: " : "taken: ") + std::string(row.name), [&row] {
            for (const RequestForm form : kRequestForms) {
                RawServer server({row.reply, OkReply("next")});
                HttpCall call(server.Url());
                RequireEqual(call.SendAs(form), row.code, "the code");
                if (row.code > 0) {
                    RequireEqual(call.BodyOf(form), std::string(row.body), "the text");
                }
                Sleep(row.reply.last.empty() ? 0 : 300);  // what comes late must have come
                HttpCall next(server.Url());
                RequireEqual(next.SendAs(form), 200, "the code of the next request");
                RequireEqual(next.BodyOf(form), std::string("next"), "the text of the next request");
            }
        });
    }
}

void ExamineCodes(Examination& examination) {
    const struct {
        const char* name;
        int code;
        RawReply reply;
    } rows[] = {
        {"a text of 16 MiB is taken", 200, OkReply(std::string(kLargestText, 'x'))},
        {"a text of one byte more is too large", kHttpReplyTooLarge, OkReply(std::string(kLargestText + 1, 'x'))},
        {"gzip that is none", kHttpBadEncoding, OkReply("plain text", "Content-Encoding: gzip\r\n")},
        {"an unknown encoding", kHttpBadEncoding, OkReply("?", "Content-Encoding: x-unheard-of\r\n")},
        {"an empty body under an encoding", kHttpBadEncoding, OkReply("", "Content-Encoding: gzip\r\n")},
        {"an empty 304 under an encoding", 304, {"HTTP/1.1 304 Not Modified\r\nContent-Encoding: gzip\r\n\r\n"}},
        {"a reply that stalls before its head, one second allowed", kHttpTimeout, {"", Then::kStall}},
        {"a reply that stalls in its body, one second allowed",
         kHttpTimeout,
         {"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this", Then::kStall}},
    };
    for (const auto& row : rows) {
        examination.Point(std::string("the code: ") + row.name, [&row] {
            RawServer server({row.reply});
            HttpCall call(server.Url());
            const bool stalls = row.reply.then == Then::kStall;
            RequireWithin(20000, "the request",
                          [&] { RequireEqual(call.Send(stalls ? 1 : -1), row.code, "the code"); });
            Require(row.code > 0 || call.response.empty(), "the response is " + Shown(call.response));
        });
    }
    examination.Point("the code: nobody listens", [] {
        std::wstring url;
        {
            RawServer gone({OkReply()});
            url = gone.Url();
        }
        RequireEqual(HttpCall(url).Send(), int{kHttpConnectFailed}, "the code");
    });
    examination.Point("the code: a host name without an address", [] {
        RequireEqual(HttpCall(L"http://no-such-host.invalid/").Send(), int{kHttpNameNotResolved}, "the code");
    });
    examination.SlowPoint("the code: 30 s without a byte of the body end the exchange", [] {
        RawServer server({{"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nonly this", Then::kStall}});
        HttpCall call(server.Url());
        RequireWithin(45000, "the request", [&] { RequireEqual(call.Send(), int{kHttpTimeout}, "the code"); });
    });
}

void ExamineHeaders(Examination& examination) {
    examination.Point("an error status is a result, with its text", [] {
        RawServer server({{RawReplyBytes("503 Busy", "", "wait")}});
        HttpCall call(server.Url());
        RequireEqual(call.Send(), 503, "the code");
        RequireEqual(call.response, std::string("wait"), "the text");
    });
    examination.Point("the headers are the final reply's, a repeated name's values joined; no trailers", [] {
        RawServer server(
            {{"HTTP/1.1 103 Early Hints\r\nEarly: 1\r\n\r\nHTTP/1.1 404 Not Found\r\nX-Two: a\r\nOther:\r\nx-two:  "
              "b\r\n"
              "Transfer-Encoding: chunked\r\n\r\n4\r\ngone\r\n0\r\nTrailer: 1\r\n\r\n"}});
        HttpCall call(server.Url());
        RequireEqual(call.SendAs(RequestForm::kHeaders), 404, "the code");
        const std::map<std::string, std::string> expected = {
            {"X-Two", "a, b"}, {"Other", ""}, {"Transfer-Encoding", "chunked"}};
        Require(call.headers == expected, "they are others, " + std::to_string(call.headers.size()) + " of them");
    });
}

}  // namespace

void ExamineHttpReplies(Examination& examination) {
    ExamineWholeReplies(examination);
    ExamineCodes(examination);
    ExamineHeaders(examination);
}

}  // namespace conformance
