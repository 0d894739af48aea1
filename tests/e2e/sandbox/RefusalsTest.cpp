#include <UserSyncKeyService.h>

#include "RecordedRequest.h"
#include "SandboxSession.h"

namespace {

using Refusals = SandboxSession;
// Not a fault of the sandbox, such as 500; a wrong header is named.
bool IsRefused(const std::string& reply, const std::string& header = "") {
    const std::string status = reply.substr(0, 4);
    return status == "401 " || status == "403 " || (status == "400 " && reply.find(header) != std::string::npos);
}

}  // namespace

// The real requests, each with one thing wrong: every header missing or changed, one too many, another query or body.
// All other tests rely on these checks to find a wrong request.
TEST_F(Refusals, EveryEndpointRefusesWhatIsNotQuiteRight) {
    SignInWhole();
    UserSyncKeyService keys;
    std::vector<DeviceTag> devices;
    EXPECT_TRUE(keys.InitUserSyncKey() && m_service->RequestUserID() && m_service->RequestUserInfo() &&
                m_service->UpdateRegistInfo() && m_service->GetAccessTokenByRefrshToken() &&
                m_service->RequestApplicationAT() && m_service->InitSysConf() && m_service->ActiveUser() &&
                m_service->RequestClientLogReport() && m_service->GetLoginDevicesHistory(devices))
        << LogText();
    m_service->ReportLoginTime("b");
    EXPECT_TRUE(m_service->ExportContracts(m_sandbox.Url("/contacts/v1/export"), (m_folder / "c").wstring(),
                                           m_sandbox.PortalCookies()));
    keys.ClearUserSyncKey();
    const std::string pc = "/KeCloudUserFoundationService/PC/";
    const std::string keyService = "/KeCloudUserInformationService/v1/";
    for (const std::string& endpoint :
         {std::string("/pcclient/getAccessTokenByCode"), std::string("/pcclient/refreshtoken"),
          std::string("/pcclient/getAppAccessToken"), std::string("/pcclient/getRegisterInfo"), std::string("/gateway"),
          std::string("/drive/v1/about"), keyService + "users", keyService + "keys/publicKey", keyService + "keys",
          pc + "sysConfInit", pc + "sysConfRefresh", pc + "getUserRegister", pc + "postOpDesc",
          pc + "getLastOperationRecord", std::string("/contacts/v1/export")}) {
        const RecordedRequest request(m_sandbox.Control("/sandbox/last-request?endpoint=" + endpoint));
        ASSERT_EQ(request.SendTo(m_sandbox, request.headers, request.body).substr(0, 4), "200 ")
            << endpoint << " as it was";
        RecordedRequest::HeaderMap more = request.headers;
        more[L"x-zv-extra"] = L"1";
        EXPECT_TRUE(IsRefused(request.SendTo(m_sandbox, more, request.body))) << endpoint << " with one more header";
        const char* const another = request.target.find('?') == std::string::npos ? "?a=b" : "&a=b";
        EXPECT_TRUE(IsRefused(request.SendTo(m_sandbox, request.headers, request.body, another)))
            << endpoint << another;
        if (request.method == "POST") {
            EXPECT_TRUE(IsRefused(request.SendTo(m_sandbox, request.headers, request.body + " ")))
                << endpoint << " and a blank";
            EXPECT_TRUE(IsRefused(request.SendTo(m_sandbox, request.headers, ""))) << endpoint << " without its body";
        }
        for (const auto& [name, value] : request.headers) {
            RecordedRequest::HeaderMap headers = request.headers;
            // Any text up to 250 characters is a good device name.
            headers[name] = name == L"x-zv-device-name" ? std::wstring(251, L'x') : L"x" + value;
            const std::string reply = request.SendTo(m_sandbox, headers, request.body);
            // A refresh token that nobody issued is answered, without a token: the person has to sign in again.
            EXPECT_TRUE(name == L"refreshToken" ? reply.find("\"token\"") == std::string::npos
                                                : IsRefused(reply, Narrow(name)))
                << endpoint << " x" << Narrow(name) << reply;
            headers.erase(name);
            EXPECT_TRUE(IsRefused(request.SendTo(m_sandbox, headers, request.body), Narrow(name)))
                << endpoint << " -" << Narrow(name);
        }
    }
}

TEST_F(Refusals, ThePortalReadsTheWholeBody) {
    SignInWhole();
    const RecordedRequest request(m_sandbox.Control("/sandbox/last-request?endpoint=/pcclient/getAccessTokenByCode"));
    const std::string code = "\"authorizationCode\":\"c\"";
    const std::string trace = "\"traceId\":\"" + Narrow(request.headers.at(L"x-zv-trace-id")) + "\"";
    const std::pair<std::string, std::string> rows[] = {{"200 ", "{" + code + "," + trace + "}\n"},
                                                        {"400 ", "null\n"},
                                                        {"400 ", "{" + trace + "}\n"},
                                                        {"400 ", "{" + trace + "," + code + "}\n"},
                                                        {"400 ", "{\"authorizationCode\":1," + trace + "}\n"},
                                                        {"400 ", "{" + code + ",\"traceId\":\"other\"}\n"}};
    for (const auto& [status, body] : rows) {
        EXPECT_EQ(request.SendTo(m_sandbox, request.headers, body).substr(0, 4), status) << body;
    }
}
