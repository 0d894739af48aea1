#include <gtest/gtest.h>

#include "HttpCall.h"

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(HttpRequest, BytesOnTheWire) {
    struct Row {
        const char* name;
        BasicHttpLibStrategy::HeaderMap headers;
        std::wstring path;
        bool post;
        std::wstring postData;
        std::string sent;
        std::string notSent;
    };
    const std::wstring largeBody(2 * 1024 * 1024, L'x');
    const Row rows[] = {
        {"empty header value", {{L"Authorization", L""}}, L"/", false, L"", "\r\nAuthorization:\r\n", "?"},
        {"blank header value", {{L"userId", L"  "}}, L"/", false, L"", "\r\nuserId:\r\n", "?"},
        {"header value in UTF-8",
         {{L"name", L"\u00E4\u4E2D"}},
         L"/",
         false,
         L"",
         "name: \xC3\xA4\xE4\xB8\xAD\r\n",
         "?"},
        {"unpaired surrogate", {{L"name", L"a\xD800"}}, L"/", false, L"", "name: a\xEF\xBF\xBD\r\n", "?"},
        {"Host of the caller",
         {{L"Host", L"front.example"}},
         L"/",
         false,
         L"",
         "\r\nHost: front.example\r\n",
         "127.0.0.1"},
        {"GET sends no body", {}, L"/", false, L"null\n", "GET / HTTP/1.1\r\n", "null"},
        {"GET sends no length", {}, L"/", false, L"null\n", "\r\n\r\n", "Content-"},
        {"POST body in UTF-8", {}, L"/", true, L"\u00E4", "Content-Length: 2\r\n\r\n\xC3\xA4", "Content-Type"},
        {"empty POST", {}, L"/", true, L"", "POST / HTTP/1.1\r\n", "Content-Type"},
        {"empty POST has a length", {}, L"/", true, L"", "\r\nContent-Length: 0\r\n", "?"},
        {"large POST without Expect", {}, L"/", true, largeBody, "\r\nContent-Length: 2097152\r\n", "Expect"},
        {"caller's length is not believed", {{L"content-length", L"5"}}, L"/", false, L"", "GET / ", "ontent-"},
        {"nothing asked, no encoding", {}, L"/", false, L"", "GET / ", "Accept-Encoding"},
        {"path escaped once", {}, L"/\u00E4 b%2fc?q=\u00E4", false, L"", "GET /%C3%A4%20b%2fc?q=%C3%A4 HTTP", "%25"},
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

TEST(HttpRequest, StandardHeaderSet) {
    RawServer server({OkReply()});
    HttpCall call(server.Url());
    call.strategy.SetHeaders(L"user", L"app", L"token");
    EXPECT_EQ(call.Send(), 200);
    for (const char* line :
         {"userId: user", "appId: app", "Authorization: Bearer token", "Content-Type: application/json"}) {
        EXPECT_TRUE(Holds(server.Requests()[0], std::string("\r\n") + line + "\r\n")) << line;
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
}

TEST(HttpRequest, NullArguments) {
    HttpCall call(L"http://127.0.0.1:1/");
    EXPECT_EQ(CurlHttpLibContext(nullptr).Request(call.response, -1), kHttpInvalidRequest);
    EXPECT_EQ(CurlHttpLibContext(&call.strategy).Request(call.response, static_cast<void*>(nullptr)),
              kHttpInvalidRequest);
}

}  // namespace
