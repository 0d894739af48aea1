#include <map>
#include <thread>

#include "Examination.h"
#include "HttpCases.h"

namespace conformance {

namespace {

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

void ExamineStrategy(Examination& examination) {
    examination.Point("a strategy gives back what it was set", [] {
        BasicHttpLibStrategy strategy;
        strategy.SetUrl(L"http://h/\u00E9");
        strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
        strategy.SetPostData(L"body");
        strategy.SetCertPath(L"C:\\a.pem");
        strategy.SetHeaders({{L"gone", L"1"}});
        strategy.SetHeaders({{L"name", L"value"}});
        RequireEqual(strategy.Url(), std::wstring(L"http://h/\u00E9"), "the URL");
        Require(strategy.Method() == HttpRequestMethod::kPost, "the method is another");
        RequireEqual(strategy.PostData(), std::wstring(L"body"), "the post data");
        RequireEqual(strategy.CertPath(), std::wstring(L"C:\\a.pem"), "the certificate path");
        Require(strategy.Headers() == BasicHttpLibStrategy::HeaderMap{{L"name", L"value"}}, "the headers are others");
        Require(&strategy.GetHeaders() == &strategy.Headers(), "GetHeaders and Headers differ");
    });
    examination.Point("the suite's standard header set has its four headers, and no former one", [] {
        BasicHttpLibStrategy strategy;
        strategy.SetHeaders({{L"gone", L"1"}});
        strategy.SetHeaders(L"U", L"A", L"T");
        const BasicHttpLibStrategy::HeaderMap expected = {{L"userId", L"U"},
                                                          {L"appId", L"A"},
                                                          {L"Authorization", L"Bearer T"},
                                                          {L"Content-Type", L"application/json"}};
        Require(strategy.GetHeaders() == expected, "it has others");
    });
    examination.Point("log functions receive what they are given, and may be missing", [] {
        BasicHttpLibStrategy strategy;
        strategy.Log(L"nobody");
        strategy.LogError(L"nobody");
        std::wstring heard;
        strategy.SetLogFunction([&heard](const std::wstring& text) { heard += L"progress " + text + L" "; });
        strategy.SetErrorLogFunction([&heard](const std::wstring& text) { heard += L"error " + text; });
        strategy.Log(L"a");
        strategy.LogError(L"b");
        RequireEqual(heard, std::wstring(L"progress a error b"), "what was heard");
    });
}

void ExamineSentBytes(Examination& examination) {
    for (const SentCase& row : SentCases()) {
        examination.Point(std::string("what is sent: ") + row.name, [&row] {
            RawServer server({OkReply()});
            HttpCall call(server.Url(row.path), row.headers);
            call.strategy.SetPostData(row.postData);
            RequireEqual(row.post ? call.Post(row.postData) : call.Send(), 200, "the code");
            RequireEqual(call.response, std::string("ok"), "the response");
            RequireEqual(server.Requests().size(), 1U, "the number of requests");
            const std::string request = server.Requests()[0];
            Require(Holds(request, row.sent), Shown(row.sent) + " is missing in " + Shown(request));
            Require(row.notSent == "?" || !Holds(request, row.notSent),
                    Shown(row.notSent) + " is in " + Shown(request));
        });
    }
    for (const wchar_t* name : {L"Transfer-Encoding", L"expect"}) {
        examination.Point("what is sent: not the caller's " + Shown(std::wstring(name)), [name] {
            RawServer server({OkReply()});
            HttpCall call(server.Url(), {{name, L"chunked"}});
            RequireEqual(call.Post(L"body", 10), 200, "the code");
            const std::string request = server.Requests().at(0);
            Require(!Holds(request, "xpect") && !Holds(request, "ransfer"), Shown(request));
        });
    }
}

void ExamineRefusals(Examination& examination) {
    for (const RefusedCase& row : RefusedCases()) {
        const bool refused = row.expected < 0;
        examination.Point(
            (refused ? "refused as invalid, nothing sent: " : "sent: ") + std::string(row.name), [&row, refused] {
                RawServer server({OkReply()});
                HttpCall call(server.Url(row.path), {{row.headerName, row.headerValue}, {L"X-Twice", L"1"}});
                RequireEqual(call.Post(L"body"), row.expected, "the code");
                RequireEqual(server.AcceptCount(), refused ? 0 : 1, "the number of connections");
                RequireEqual(call.response, std::string(refused ? "" : "ok"), "the response");
                Require(call.errors.empty() != refused, "the number of error texts is wrong");
            });
    }
    for (const wchar_t* url : {L"", L"ftp://127.0.0.1/", L"file:///c:/x", L"127.0.0.1", L"http://", L"http:///x"}) {
        examination.Point("refused as invalid: the URL " + Shown(std::wstring(url)), [url] {
            HttpCall call(url);
            RequireEqual(call.Send(), int{kHttpInvalidRequest}, "the code");
        });
    }
    examination.Point("refused as invalid: an unknown method", [] {
        RawServer server({OkReply()});
        HttpCall call(server.Url());
        call.strategy.SetHttpRequestMethod(static_cast<HttpRequestMethod>(7));
        RequireEqual(call.Send(), int{kHttpInvalidRequest}, "the code");
        RequireEqual(server.AcceptCount(), 0, "the number of connections");
    });
    examination.Point("refused as invalid: no strategy, and a download without a handler", [] {
        HttpCall call(L"http://127.0.0.1:1/");
        CurlHttpLibContext none(nullptr);
        CurlHttpLibContext context(&call.strategy);
        RequireEqual(none.Request(call.response, -1), int{kHttpInvalidRequest}, "the code without a strategy");
        RequireEqual(context.Request(call.response, static_cast<void*>(nullptr)), int{kHttpInvalidRequest},
                     "the code without a handler");
    });
}

void ExamineLogTexts(Examination& examination) {
    examination.Point("a failure gives one error text, on the requesting thread, without the query", [] {
        RawServer server({{"", RawReply::Then::kClose}});
        HttpCall call(server.Url(L"/path?access_token=CANARY"));
        std::thread::id thread;
        std::wstring text;
        call.strategy.SetErrorLogFunction([&](const std::wstring& error) {
            thread = std::this_thread::get_id();
            text += error + L"|";
        });
        Require(call.Send() < 0 && thread == std::this_thread::get_id(), "no text, or on another thread");
        Require(text.find(L'|') == text.size() - 1, "several: " + Shown(text));
        for (const std::wstring& progress : call.progress) {
            text += progress;
        }
        Require(text.find(L"CANARY") == std::wstring::npos, "the query is in " + Shown(text));
    });
    examination.Point("what a log function throws is dropped", [] {
        RawServer server({OkReply(), {"", RawReply::Then::kClose}});
        HttpCall call(server.Url());
        call.strategy.SetLogFunction([](const std::wstring&) { throw std::runtime_error("log"); });
        call.strategy.SetErrorLogFunction([](const std::wstring&) { throw std::runtime_error("log"); });
        RequireEqual(call.Send(), 200, "the code");
        Require(call.Send() < 0, "the second request did not fail");
    });
}

}  // namespace

void ExamineHttpRequests(Examination& examination) {
    ExamineStrategy(examination);
    ExamineSentBytes(examination);
    ExamineRefusals(examination);
    ExamineLogTexts(examination);
}

}  // namespace conformance
