#include <gtest/gtest.h>

#include "HttpCall.h"

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(HttpRequest, BytesOnTheWire) {
    struct Row {
        const char* name;
        std::string sent;
        std::string notSent;
        BasicHttpLibStrategy::HeaderMap headers = {};
        bool post = false;
        std::wstring postData = {};
        std::wstring path = L"/";
    };
    const std::wstring largeBody(2 * 1024 * 1024, L'x');
    const Row rows[] = {
        {"empty header value", "\r\nAuthorization:\r\n", "?", {{L"Authorization", L""}}},
        {"blank header value", "\r\nuserId:\r\n", "?", {{L"userId", L"  "}}},
        {"header value in UTF-8", "name: \xC3\xA4\xE4\xB8\xAD\r\n", "?", {{L"name", L"\u00E4\u4E2D"}}},
        {"unpaired surrogate", "name: a\xEF\xBF\xBD\r\n", "?", {{L"name", L"a\xD800"}}},
        {"Host of the caller", "\r\nHost: front.example\r\n", "127.0.0.1", {{L"Host", L"front.example"}}},
        {"GET sends no body", "GET / HTTP/1.1\r\n", "null", {}, false, L"null\n"},
        {"GET sends no length", "\r\n\r\n", "Content-", {}, false, L"null\n"},
        {"POST body in UTF-8", "Content-Length: 2\r\n\r\n\xC3\xA4", "Content-Type", {}, true, L"\u00E4"},
        {"empty POST", "POST / HTTP/1.1\r\n", "Content-Type", {}, true},
        {"empty POST has a length", "\r\nContent-Length: 0\r\n", "?", {}, true},
        {"large POST without Expect", "\r\nContent-Length: 2097152\r\n", "Expect", {}, true, largeBody},
        {"caller's length is not believed", "GET / ", "ontent-", {{L"content-length", L"5"}}},
        {"encodings as asked", "\r\naccept-encoding: br, x\r\n", "gzip", {{L"accept-encoding", L"br, x"}}},
        {"nothing asked, no encoding", "GET / ", "Accept-Encoding"},
        {"path escaped once", "GET /%C3%A4%20b%2fc?q=%C3%A4 HTTP", "%25", {}, false, L"", L"/\u00E4 b%2fc?q=\u00E4"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RawServer server({OkReply()});
        HttpCall call(server.Url(row.path), row.headers);
        call.strategy.SetPostData(row.postData);
        EXPECT_EQ(row.post ? call.Post(row.postData) : call.Send(), 200);
        EXPECT_EQ(call.response, "ok");
        ASSERT_EQ(server.Requests().size(), 1u);
        EXPECT_TRUE(Holds(server.Requests()[0], row.sent)) << server.Requests()[0].substr(0, 500);
        EXPECT_FALSE(row.notSent != "?" && Holds(server.Requests()[0], row.notSent)) << server.Requests()[0];
    }
}

TEST(HttpRequest, RefusedWithNothingSent) {
    struct Row {
        const char* name;
        std::wstring headerName;
        std::wstring headerValue;
        std::wstring path;
        int expected = kHttpInvalidRequest;
    };
    using namespace std::string_literals;
    const Row rows[] = {
        {"control step: nothing wrong", L"a", L"b\tc", L"/", 200},
        {"other control characters", L"a", L"b\x01\x7Fz", L"/x\x01y", 200},
        {"one name in two cases", L"x-twice", L"b", L"/"},
        {"CR in a value", L"a", L"b\rc", L"/"},
        {"LF in a value", L"a", L"b\nInjected: 1", L"/"},
        {"NUL in a value", L"a", L"b\0c"s, L"/"},
        {"line break in a name", L"a: b\r\nc", L"d", L"/"},
        {"NUL in a name", L"a\0"s, L"d", L"/"},
        {"colon in a name", L"a:", L"d", L"/"},
        {"blank in a name", L"a b", L"d", L"/"},
        {"empty name", L"", L"d", L"/"},
        {"CR LF in the URL", L"a", L"b", L"/x HTTP/1.1\r\nInjected: 1\r\n"},
        {"NUL in the URL", L"a", L"b", L"/x\0y"s},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RawServer server({OkReply()});
        HttpCall call(server.Url(row.path), {{row.headerName, row.headerValue}, {L"X-Twice", L"1"}});
        EXPECT_EQ(call.Post(L"body"), row.expected);
        const bool refused = row.expected < 0;
        EXPECT_EQ(server.AcceptCount(), refused ? 0 : 1);
        EXPECT_EQ(call.errors.size(), refused ? 1u : 0u);
        EXPECT_EQ(call.response, refused ? "" : "ok");
    }
    for (const wchar_t* url : {L"", L"ftp://127.0.0.1/", L"file:///c:/x", L"127.0.0.1", L"http://", L"http:///x"}) {
        HttpCall call(url);
        EXPECT_EQ(call.Send(), kHttpInvalidRequest) << url;
    }
    HttpCall call(L"http://127.0.0.1:1/");
    EXPECT_EQ(CurlHttpLibContext(nullptr).Request(call.response, -1), kHttpInvalidRequest);
    EXPECT_EQ(CurlHttpLibContext(&call.strategy).Request(call.response, static_cast<void*>(nullptr)),
              kHttpInvalidRequest);
}

}  // namespace
