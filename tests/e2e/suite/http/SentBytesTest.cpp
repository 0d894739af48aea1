#include <gtest/gtest.h>

#include "HttpCases.h"

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(HttpRequest, BytesOnTheWire) {
    for (const SentCase& row : SentCases()) {
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
    for (const RefusedCase& row : RefusedCases()) {
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
