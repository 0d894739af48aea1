#include "request/UserAuthRequest.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "ServiceFixture.h"
#include "request/RequestLog.h"

using userauth::JsonData;
using userauth::UserAuthRequest;
using userauth::WebRequestResult;

namespace {

class UserAuthRequestTest : public testing::Test {
protected:
    UserAuthRequestTest() {
        Recording() = SuiteRecording();
        Json::Value body;
        body["b"] = "\xC3\xA9";
        body["a"] = 1;
        m_request.SetPostRequest(L"https://h/p", {{L"own", L"1"}}, JsonData(body));
    }

    Lines Sent() { return std::exchange(Recording().journal, {}); }

    UserAuthRequest m_request;
    std::unique_ptr<WebRequestResult> m_result = std::make_unique<WebRequestResult>();
};

Lines HookLine(const std::string& severity, const std::string& lambda, const std::string& text) {
    return {"log 10 " + severity + " UserAuthRequest::" + lambda + "::operator () " + text};
}

const Lines kBegun = {"http SetUrl https://h/p", "http SetLogFunction "};

// What every form with a body tells the library after its log functions.
Lines Told(int headers, const std::string& body, const std::string& request) {
    return {"http SetHttpRequestMethod 1", "http SetHeaders " + std::to_string(headers), "http SetCertPath ",
            "http SetPostData " + body, "http Request " + request};
}

}  // namespace

TEST_F(UserAuthRequestTest, CompactFormTellsTheHttpLibraryInOrder) {
    Recording().replies = {{201, "reply", {}}};
    m_request.SendWebRequest(*m_result);
    EXPECT_EQ(Sent(), kBegun + Lines{"http SetErrorLogFunction "} + Told(1, "{\"a\":1,\"b\":\"\\u00e9\"}\n", "-1") +
                          HookLine("0", "SendWebRequest::<lambda_1>", "progress text") +
                          HookLine("5", "SendWebRequest::<lambda_2>", "error text"));
    EXPECT_EQ(m_result->nHttpCode, 201);
    EXPECT_STREQ(m_result->szResponse, "reply");
}

TEST_F(UserAuthRequestTest, StyledFormsHaveNoErrorHook) {
    const std::string styled = "{\n\t\"a\" : 1,\n\t\"b\" : \"\\u00e9\"\n}\n";
    Recording().replies = {{200, "", {{"h", "v"}}}, {200, "", {}}};
    UserAuthRequest::ReplyHeaderMap replyHeaders;
    m_request.SendWebRequest(*m_result, replyHeaders);
    EXPECT_EQ(Sent(), kBegun + Told(1, styled, "with reply headers") +
                          HookLine("0", "SendWebRequest::<lambda_3>", "progress text"));
    EXPECT_EQ(replyHeaders.at("h"), "v");
    m_request.SendWebRequest(*m_result, UserAuthRequest::HeaderMap{{L"given", L"2"}, {L"too", L"3"}});
    EXPECT_EQ(Sent(), kBegun + Told(2, styled, "-1") + HookLine("0", "SendWebRequest::<lambda_4>", "progress text"));
    EXPECT_EQ(Recording().requestHeaders, (UserAuthRequest::HeaderMap{{L"given", L"2"}, {L"too", L"3"}}));
}

TEST_F(UserAuthRequestTest, AGetPassesTheNullBody) {
    UserAuthRequest request;
    request.SetPostRequest(L"https://h/p", {{L"old", L"1"}}, JsonData());
    request.SetGetRequest(L"https://h/g");
    request.SendWebRequest(*m_result);
    EXPECT_EQ(Recording().url, L"https://h/g");
    EXPECT_EQ(Recording().requestHeaders, (UserAuthRequest::HeaderMap{{L"old", L"1"}}));
    EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 0"});
    EXPECT_EQ(Recording().postData, L"null\n");
    EXPECT_EQ(m_result->nHttpCode, kHttpConnectFailed);
    request.SetPostRequest(L"https://h/p", {{L"old", L"1"}}, JsonData());
    request.SetGetRequest(L"https://h/g", {{L"new", L"2"}});
    Recording().journal.clear();
    request.SendWebRequest(*m_result);
    EXPECT_EQ(Recording().requestHeaders, (UserAuthRequest::HeaderMap{{L"new", L"2"}})) << "replaced, not merged";
    EXPECT_EQ(Recording().Lines("http SetHttpRequestMethod"), Lines{"http SetHttpRequestMethod 0"});
}

TEST_F(UserAuthRequestTest, DownloadSetsNeitherBodyNorCertificatePath) {
    Recording().replies = {{206, "bytes", {}}};
    std::string received;
    FileTransferHandler handler;
    handler.SetWriteDataFunc([&](const char* data, std::size_t& size, bool) {
        received.append(data, size);
        return true;
    });
    EXPECT_EQ(m_request.SendDownRequest(&handler), 206);
    EXPECT_EQ(Sent(), (kBegun + Lines{"http SetHttpRequestMethod 1", "http SetHeaders 1", "http Request download"} +
                       HookLine("0", "SendDownRequest::<lambda_1>", "progress text")));
    EXPECT_EQ(received, "bytes");
}

TEST_F(UserAuthRequestTest, ReplyTextIsBoundedAt40959Bytes) {
    static int raised = 0;
    const auto former = _set_invalid_parameter_handler(
        [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) { ++raised; });
    const struct {
        std::size_t bytes;
        std::size_t kept;
        int raised;
    } rows[] = {{40959, 40959, 0}, {40960, 0, 1}, {10 * 1024 * 1024, 0, 1}};
    for (const auto& row : rows) {
        raised = 0;
        Recording().replies = {{200, std::string(row.bytes, '['), {}}};
        m_request.SendWebRequest(*m_result);
        EXPECT_EQ(std::strlen(m_result->szResponse), row.kept) << row.bytes;
        EXPECT_EQ(m_result->nHttpCode, 200);
        EXPECT_EQ(raised, row.raised) << row.bytes;
    }
    _set_invalid_parameter_handler(former);
}

TEST_F(UserAuthRequestTest, NothingThatTheSuiteThrowsLeavesASend) {
    Recording().duringExchange = [](const std::wstring&) { throw 1; };
    m_result->nHttpCode = 200;
    m_result->szResponse[0] = 'x';
    m_request.SendWebRequest(*m_result);
    EXPECT_EQ(m_result->nHttpCode, 0);
    EXPECT_STREQ(m_result->szResponse, "");
    EXPECT_EQ(m_request.SendDownRequest(nullptr), 0);
}

TEST_F(UserAuthRequestTest, AHandlerThatThrowsLeavesNothingOfTheReply) {
    const auto former = _set_invalid_parameter_handler(
        [](const wchar_t*, const wchar_t*, const wchar_t*, unsigned, std::uintptr_t) { throw 1; });
    Recording().replies = {{200, std::string(40960, 'x'), {}}};
    EXPECT_NO_THROW(m_request.SendWebRequest(*m_result));
    _set_invalid_parameter_handler(former);
    EXPECT_EQ(m_result->nHttpCode, 0);
    EXPECT_STREQ(m_result->szResponse, "");
}

TEST(SummaryLine, CarriesAnyUrl) {
    EXPECT_EQ(userauth::SummaryLine("Op", L"https://h/\u0E17?\u00E9", -3),
              L"Op\nUrl:https://h/\u0E17?\u00E9\nHttpCode:-3");
}

TEST(JsonData, DestroysAnyValue) {
    for (const Json::Value& value :
         {Json::Value("text"), Json::Value(1), Json::Value(true), Json::Value(), Json::Value(Json::arrayValue)}) {
        EXPECT_NO_THROW({ const JsonData data(value); });
    }
}
