#include "HttpCall.h"
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

}  // namespace

// The sandbox's checks are what shows in every other test that the requests are right.
TEST_F(SandboxSession, ThePortalRefusesWhatIsNotQuiteRight) {
    const std::wstring traceId = m_service->GetTraceID(BaseCmd::kRequestAccessToken);
    const HeaderMap whole = UserAuthServiceAccess::BuildHeaders(*m_service, HeadType::kCodeExchange, traceId);
    const std::wstring trace = L"\"traceId\":\"" + traceId + L"\"";
    const std::wstring body = L"{\"authorizationCode\":\"unknown\"," + trace + L"}\n";
    const auto expect = [&](int code, const std::wstring& named, const HeaderMap& headers, const std::wstring& sent) {
        HttpCall call(m_sandbox.Url("/pcclient/getAccessTokenByCode?traceId=") + traceId, headers);
        EXPECT_EQ(call.Post(sent, 20), code) << Narrow(named) << Narrow(sent);
        EXPECT_NE(call.response.find(Narrow(named)), std::string::npos) << Narrow(named) << ": " << call.response;
    };
    EXPECT_EQ(whole.size(), 17U);
    expect(200, L"", whole, body);
    for (const auto& [name, value] : whole) {
        HeaderMap headers = whole;
        // Any text up to 250 characters is a good device name.
        headers[name] = name == L"x-zv-device-name" ? std::wstring(251, L'x') : L"x" + value;
        expect(400, name, headers, body);
        headers.erase(name);
        expect(400, name, headers, body);
    }
    for (const std::wstring& other :
         {std::wstring(L""), std::wstring(L"null\n"), L"{" + trace + L"}\n",
          L"{" + trace + L",\"authorizationCode\":\"c\"}\n", L"{\"authorizationCode\":1," + trace + L"}\n",
          std::wstring(L"{\"authorizationCode\":\"c\",\"traceId\":\"other\"}\n")}) {
        expect(400, L"", whole, other);
    }
}
