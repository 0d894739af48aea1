#include <thread>
#include <vector>

#include "Examination.h"
#include "HttpCases.h"

namespace conformance {

namespace {

using Then = RawReply::Then;

std::string Narrow(const std::wstring& ascii) {
    return {ascii.begin(), ascii.end()};
}

RawReply RedirectTo(const std::string& status, const std::string& location) {
    return {RawReplyBytes(status, "Location: " + location + "\r\n", "moved")};
}

void ExamineDownloads(Examination& examination) {
    for (const DownloadCase& row : DownloadCases()) {
        examination.Point(std::string("a download whose handler allows five bytes: ") + row.name, [&row] {
            RawServer server({row.reply});
            HttpCall call(server.Url());
            call.handler.SetMaxSize(5);
            RequireEqual(call.SendAs(RequestForm::kDownload), row.code, "the code");
            RequireEqual(call.received, std::string(row.received), "what the handler received");
            RequireEqual(call.response, std::string(), "the response");
        });
    }
    examination.Point("a download may be larger than a text", [] {
        const std::string large(17 * 1024 * 1024, 'x');
        RawServer server({OkReply(large)});
        HttpCall call(server.Url());
        RequireEqual(call.SendAs(RequestForm::kDownload), 200, "the code");
        Require(call.received == large + ".", "it is not what was sent, and then the final call");
    });
    for (const bool throws : {false, true}) {
        examination.Point(throws ? "a write function that throws ends the download"
                                 : "a write function that returns false ends the download",
                          [throws] {
                              RawServer server({OkReply("refused")});
                              HttpCall call(server.Url());
                              int calls = 0;
                              call.handler.SetWriteDataFunc([&](const char*, std::size_t&, bool) {
                                  ++calls;
                                  return throws ? throw std::runtime_error("disk full") : false;
                              });
                              CurlHttpLibContext context(&call.strategy);
                              RequireEqual(context.Request(call.response, &call.handler), int{kHttpWriteRefused},
                                           "the code");
                              RequireEqual(calls, 1, "the number of calls");
                          });
    }
    examination.Point("a handler without a function refuses every block; what its function throws comes out", [] {
        FileTransferHandler handler;
        Require(!handler.WriteData("x", 1, false), "it takes one");
        handler.SetWriteDataFunc([](const char*, std::size_t&, bool) -> bool { throw std::length_error("disk full"); });
        try {
            handler.WriteData("x", 1, false);
        } catch (const std::length_error&) {
            return;
        }
        throw Broken("nothing comes out");
    });
    examination.Point("a handler allows 2 GiB until it is told otherwise", [] {
        FileTransferHandler handler;
        RequireEqual(handler.MaxSize(), 2147483648U, "the size");
        handler.SetMaxSize(7);
        RequireEqual(handler.MaxSize(), 7U, "the size");
    });
    examination.SlowPoint("a download of less than 60 KiB within a minute is given up", [] {
        RawServer server({{"HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\nslow", Then::kStall}});
        HttpCall call(server.Url());
        RequireWithin(90000, "the request",
                      [&] { RequireEqual(call.SendAs(RequestForm::kDownload), int{kHttpTimeout}, "the code"); });
    });
}

void ExamineRedirects(Examination& examination) {
    const struct {
        const char* name;
        std::string status;
        std::string location;
        int code;
        std::string lastLine;
        std::string lastBody;
    } rows[] = {
        {"302 turns a POST into a GET", "302 Found", "/next", 200, "GET /next ", ""},
        {"a relative one, with blanks", "303 See Other", "n e?a#b", 200, "GET /dir/n%20e?a ", ""},
        {"307 stays a POST, with its body", "307 Temporary Redirect", "/next", 200, "POST /next ", "body"},
        {"300 is a reply", "300 Multiple Choices", "/next", 300, "POST /dir/x ", "body"},
        {"to another scheme", "302 Found", "ftp://127.0.0.1/", kHttpRedirectRefused, "POST /dir/x ", "body"},
        {"to a file", "302 Found", "file:///c:/x", kHttpRedirectRefused, "POST /dir/x ", "body"},
        {"a body to another host", "307 Temporary Redirect", "//127.0.0.2/next", kHttpRedirectRefused, "POST /dir/x ",
         "body"},
    };
    for (const auto& row : rows) {
        examination.Point(std::string("a redirect: ") + row.name, [&row] {
            RawServer server({RedirectTo(row.status, row.location), OkReply()});
            HttpCall call(server.Url(L"/dir/x"), {{L"Authorization", L"secret"}});
            RequireEqual(call.Post(L"body"), row.code, "the code");
            const std::string last = server.Requests().back();
            Require(last.find(row.lastLine) == 0, "the last request is " + Shown(last));
            RequireEqual(last.substr(last.find("\r\n\r\n") + 4), row.lastBody, "the last body");
            Require(last.find("Authorization: secret") != std::string::npos, "the host's own header is missing");
        });
    }
    examination.Point("a redirect: five are followed, a sixth is refused", [] {
        for (const int redirects : {5, 6}) {
            std::vector<RawReply> script(static_cast<std::size_t>(redirects), RedirectTo("302 Found", "/again"));
            script.push_back(OkReply());
            RawServer server(script);
            RequireEqual(HttpCall(server.Url()).Send(), redirects == 5 ? 200 : int{kHttpRedirectRefused}, "the code");
        }
    });
    examination.Point("a redirect: to another host no header goes along that says something of the user", [] {
        RawServer other({OkReply()});
        RawServer server({RedirectTo("302 Found", Narrow(other.Url(L"/there")))});
        HttpCall call(server.Url(), {{L"authorization", L"secret"},
                                     {L"Cookie", L"secret"},
                                     {L"userId", L"secret"},
                                     {L"refreshToken", L"secret"},
                                     {L"Accept-Language", L"zh-CN"}});
        RequireEqual(call.Send(), 200, "the code");
        const std::string arrived = other.Requests().at(0);
        Require(arrived.find("secret") == std::string::npos, Shown(arrived));
        Require(arrived.find("Accept-Language: zh-CN") != std::string::npos, "Accept-Language is gone too");
    });
}

void ExamineConnections(Examination& examination) {
    const struct {
        const char* name;
        std::vector<RawReply> script;
        int connections;
    } rows[] = {
        {"it is kept for the next context", {OkReply()}, 1},
        {"a POST is sent again when the server closed it while idle", {{OkReply().bytes, Then::kClose}, OkReply()}, 2},
        {"a POST is sent again when the server closes it at the request",
         {OkReply(), {"", Then::kClose}, OkReply()},
         2},
    };
    for (const auto& row : rows) {
        examination.Point(std::string("a connection: ") + row.name, [&row] {
            RawServer server(row.script);
            HttpCall second(server.Url());
            RequireEqual(HttpCall(server.Url()).Send(), 200, "the first code");
            RequireEqual(second.Post(L"body"), 200, "the second code");
            RequireEqual(server.AcceptCount(), row.connections, "the number of connections");
        });
    }
    examination.Point("four threads at once: each gets its own reply", [] {
        RawServer server({OkReply()});
        std::atomic<int> whole{0};
        std::thread threads[4];
        for (std::thread& thread : threads) {
            thread = std::thread([&] {
                for (int round = 0; round < 25; ++round) {
                    HttpCall call(server.Url());
                    whole += call.Send() == 200 && call.response == "ok" ? 1 : 0;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        RequireEqual(whole.load(), 100, "the number of replies");
    });
}

// Set for programs of either kind: those that ask Windows, and those that ask the C runtime.
void SetVariable(const wchar_t* name, const std::wstring& value) {
    _wputenv_s(name, value.c_str());
    SetEnvironmentVariableW(name, value.empty() ? nullptr : value.c_str());
}

void ExamineProxies(Examination& examination) {
    examination.Point("a proxy: the environment's is asked, for a loopback address none", [] {
        RawServer proxy({OkReply("by proxy")});
        RawServer server({OkReply("directly")});
        SetVariable(L"http_proxy", L"http://127.0.0.1:" + std::to_wstring(proxy.Port()));
        HttpCall remote(L"http://host.invalid/");
        HttpCall local(server.Url());
        const int farCode = remote.Send();
        const int nearCode = local.Send();
        SetVariable(L"http_proxy", L"");
        RequireEqual(farCode, 200, "the code");
        RequireEqual(remote.response, std::string("by proxy"), "the text");
        RequireEqual(nearCode, 200, "the code of the loopback address");
        RequireEqual(local.response, std::string("directly"), "the text of the loopback address");
    });
}

void ExamineObserver(Examination& examination) {
    examination.Point(
        "the observer sees each exchange on its thread, URL without query; what it throws is dropped", [] {
            RawServer server({OkReply(), OkReply(), {"", Then::kClose}});
            std::vector<HttpExchange> seen;
            bool isSameThread = true;
            CurlHttpLibContext::SetExchangeObserver(
                [&seen, &isSameThread, thread = std::this_thread::get_id()](const HttpExchange& exchange) {
                    seen.push_back(exchange);
                    isSameThread = isSameThread && thread == std::this_thread::get_id();
                    throw std::runtime_error("dropped");
                });
            HttpCall(server.Url(L"/path?query")).Post(L"");
            HttpCall(server.Url(L"/path?query")).Send();
            HttpCall(L"ftp://h").Send();
            CurlHttpLibContext::SetExchangeObserver(nullptr);
            HttpCall(server.Url()).Send();
            RequireEqual(seen.size(), 3U, "the number of calls");
            Require(isSameThread, "it ran on another thread");
            RequireEqual(seen[0].method, std::wstring(L"POST"), "the method");
            RequireEqual(seen[0].url, server.Url(L"/path"), "the URL");
            Require(seen[0].code == 200 && seen[2].code == kHttpInvalidRequest, "a code is wrong");
            Require(!seen[0].connectionReused && seen[1].connectionReused, "connectionReused is wrong");
        });
    examination.Point("the download observer hears the announced size of a download, before its first block", [] {
        RawServer server({OkReply("sized"), OkReply("text")});
        HttpCall call(server.Url());
        std::vector<std::uint64_t> announced;
        CurlHttpLibContext::SetDownloadObserver([&](std::uint64_t bytes) {
            announced.push_back(bytes + call.received.size());
            throw std::runtime_error("dropped");
        });
        RequireEqual(call.SendAs(RequestForm::kDownload), 200, "the code");
        HttpCall(server.Url()).Send();
        CurlHttpLibContext::SetDownloadObserver(nullptr);
        RequireEqual(announced.size(), 1U, "the number of calls");
        RequireEqual(announced[0], std::uint64_t{5}, "the size, and what had come by then");
    });
}

}  // namespace

void ExamineHttpTransfers(Examination& examination) {
    ExamineDownloads(examination);
    ExamineRedirects(examination);
    ExamineConnections(examination);
    ExamineProxies(examination);
    ExamineObserver(examination);
}

void ExamineHttpLibAtTheEnd() {
    HttpCall call(L"http://127.0.0.1:1/");
    RequireEqual(call.Send(), int{kHttpInternalError}, "the code");
}

}  // namespace conformance
