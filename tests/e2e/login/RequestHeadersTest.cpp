#include <HttpLib.h>

#include "SandboxSession.h"

// Reaches the private header sets through the library's exports.
class UserAuthServiceAccess {
public:
    static std::map<std::wstring, std::wstring> BuildHeaders(UserAuthService& service, HeadType type,
                                                             const std::wstring& traceId) {
        return service.BuildHeaders(type, traceId);
    }
};

namespace {

using HeaderMap = std::map<std::wstring, std::wstring>;

class RequestHeaders : public SandboxSession {
protected:
    RequestHeaders()
        : m_traceId(m_service->GetTraceID(BaseCmd::kRequestAccessToken)),
          m_headers(UserAuthServiceAccess::BuildHeaders(*m_service, HeadType::kCodeExchange, m_traceId)),
          m_body(L"{\"authorizationCode\":\"unknown\",\"traceId\":\"" + m_traceId + L"\"}\n") {}

    int Send(const HeaderMap& headers, const std::wstring& body) {
        BasicHttpLibStrategy strategy;
        strategy.SetUrl(std::wstring(m_sandbox.m_http.begin(), m_sandbox.m_http.end()) +
                        L"/pcclient/getAccessTokenByCode?traceId=" + m_traceId);
        strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
        strategy.SetHeaders(headers);
        strategy.SetPostData(body);
        return CurlHttpLibContext(&strategy).Request(m_reply, 20);
    }

    std::wstring m_traceId;
    HeaderMap m_headers;
    std::wstring m_body;
    std::string m_reply;
};

std::string Narrow(const std::wstring& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

TEST_F(RequestHeaders, TheWholeSetIsAccepted) {
    EXPECT_EQ(m_headers.size(), 17U);
    EXPECT_EQ(Send(m_headers, m_body), 200) << m_reply;
}

TEST_F(RequestHeaders, EveryMissingHeaderIsRefusedByName) {
    for (const auto& [name, value] : m_headers) {
        HeaderMap headers = m_headers;
        headers.erase(name);
        EXPECT_EQ(Send(headers, m_body), 400) << Narrow(name);
        EXPECT_NE(m_reply.find(Narrow(name)), std::string::npos) << Narrow(name) << ": " << m_reply;
    }
}

TEST_F(RequestHeaders, EveryMalformedHeaderIsRefusedByName) {
    for (const auto& [name, value] : m_headers) {
        HeaderMap headers = m_headers;
        // Any text up to 250 characters is a good device name.
        headers[name] = name == L"x-zv-device-name" ? std::wstring(251, L'x') : L"x" + value;
        EXPECT_EQ(Send(headers, m_body), 400) << Narrow(name);
        EXPECT_NE(m_reply.find(Narrow(name)), std::string::npos) << Narrow(name) << ": " << m_reply;
    }
}

TEST_F(RequestHeaders, TheBodyIsCheckedToo) {
    const std::wstring trace = L"\"traceId\":\"" + m_traceId + L"\"";
    for (const std::wstring& body :
         {std::wstring(L""), std::wstring(L"null\n"), L"{" + trace + L"}\n",
          L"{" + trace + L",\"authorizationCode\":\"c\"}\n", L"{\"authorizationCode\":1," + trace + L"}\n",
          std::wstring(L"{\"authorizationCode\":\"c\",\"traceId\":\"other\"}\n")}) {
        EXPECT_EQ(Send(m_headers, body), 400) << Narrow(body);
    }
}
