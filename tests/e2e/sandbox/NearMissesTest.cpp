#include <UserSyncKeyService.h>

#include <ctime>

#include "RecordedRequest.h"
#include "crypto/Base64.h"

using NearMisses = SandboxSession;
using HeaderMap = RecordedRequest::HeaderMap;

// One letter in front of everything, as the refusals have it, does not show a check that asks for less than it should.
TEST_F(NearMisses, TargetsAndBodies) {
    SignInWhole();
    UserSyncKeyService keys;
    std::vector<DeviceTag> devices;
    EXPECT_TRUE(keys.InitUserSyncKey() && m_service->RequestUserID() && m_service->RequestUserInfo() &&
                m_service->UpdateRegistInfo() && m_service->GetAccessTokenByRefrshToken() &&
                m_service->RequestApplicationAT() && m_service->InitSysConf() && m_service->RequestClientLogReport() &&
                m_service->GetLoginDevicesHistory(devices))
        << LogText();
    m_service->ReportLoginTime("b");
    keys.ClearUserSyncKey();
    const std::string pc = "/KeCloudUserFoundationService/PC/";
    const std::string keyService = "/KeCloudUserInformationService/v1/";
    const struct {
        std::string endpoint, from, to;
    } rows[] = {
        {"/gateway", "nsp_fmt=JSON", "nsp_fmt=json"},
        {"/gateway", "getTokenInfo", "getTokenInf"},
        {"/gateway", "&open_id=OPENID", ""},
        {"/gateway", "&nsp_fmt", "&a=b&nsp_fmt"},
        {"/gateway", "access_token=", "access_token=%zz"},
        {"/drive/v1/about", "user(userId)", "user(*)"},
        {keyService + "users", "userId,displayName,profilePhotoLink", "displayName,userId,profilePhotoLink"},
        {keyService + "keys", "dataType=12", "dataType=13"},
        {keyService + "keys", "dataType=12", "datatype=12"},
        {"/pcclient/getAccessTokenByCode", "?traceId=1", "?traceId=2"},
        {"/pcclient/refreshtoken", "traceId=10005", "traceId=10006"},
        {"/pcclient/refreshtoken", "_11_", "_12_"},
        {"/pcclient/refreshtoken", "null\n", "{}\n"},
        {"/pcclient/getAppAccessToken", "null\n", "null"},
        {"/pcclient/getRegisterInfo", R"("registerCountryCode":"CN")", R"("registerCountryCode":"DE")"},
        {"/pcclient/getRegisterInfo", R"("registerCountryCode":")", R"("registerCountryCode": ")"},
        {pc + "sysConfInit", R"("country": ")", R"("country":")"},
        {pc + "sysConfInit", "CN", "DE"},
        {pc + "getUserRegister", "clientLogReport", "clientLogReports"},
        {pc + "postOpDesc", R"("isStored":"false")", R"("isStored":false)"},
        {pc + "postOpDesc", "service:client,", "service:server,"},
        {pc + "postOpDesc", ",result:ok", ",result:no"},
        {pc + "postOpDesc", "bus:b", R"(bus:\u0062)"},
        {pc + "postOpDesc", "bus:b", "bus:" + std::string(4096, 'b')},
        {pc + "getLastOperationRecord", "2.0", "2.1"},
    };
    std::map<std::string, RecordedRequest> right;  // by their endpoints; the last request is one of ours soon
    for (const auto& row : rows) {
        RecordedRequest request =
            right.try_emplace(row.endpoint, m_sandbox.Control("/sandbox/last-request?endpoint=" + row.endpoint))
                .first->second;
        request.Replace(row.from, row.to);
        EXPECT_EQ(request.SendTo(m_sandbox, request.headers, request.body).substr(0, 4), "400 ")
            << row.endpoint << " " << row.to;
    }
}

TEST_F(NearMisses, Headers) {
    SignInWhole();
    std::vector<DeviceTag> devices;
    ASSERT_TRUE(m_service->GetLoginDevicesHistory(devices)) << LogText();
    const RecordedRequest request(
        m_sandbox.Control("/sandbox/last-request?endpoint=/KeCloudUserFoundationService/PC/getLastOperationRecord"));
    const std::string device = Narrow(request.headers.at(L"x-zv-device-id"));
    const std::string authorization = sandbox::Base64Decoded(Narrow(request.headers.at(L"Authorization"))).value_or("");
    ASSERT_EQ(authorization.find("6:" + device + ":104862915::"), 0U);
    const std::string token = authorization.substr(authorization.rfind(':') + 1);
    const auto authorize = [](const std::string& text) {
        return HeaderMap{{L"Authorization", Wide(sandbox::Base64Encoded(text))}};
    };
    const std::wstring now = std::to_wstring(std::time(nullptr));
    const auto trace = [](const std::wstring& id) { return HeaderMap{{L"x-zv-trace-id", id}}; };
    const auto devices32 = [](const std::string& id, const std::string& again) {
        return HeaderMap{{L"x-zv-device-id", Wide(id)}, {L"x-zv-deviceUUID", Wide(again)}};
    };
    const std::string zeros(32, '0');
    const struct {
        HeaderMap changed;
        const char* says;  // null: still right
    } rows[] = {
        {{{L"x-zv-country-code", L""}}, nullptr},
        {{{L"x-zv-country-code", L"cn"}}, "x-zv-country-code"},
        {{{L"x-zv-country-code", L"C1"}}, "x-zv-country-code"},
        {{{L"x-zv-country-code", L"C"}}, "x-zv-country-code"},
        {{{L"x-zv-client-mode", L"12"}}, nullptr},
        {{{L"x-zv-client-mode", L"-1"}}, "x-zv-client-mode"},
        {{{L"x-zv-client-mode", L""}}, "x-zv-client-mode"},
        {{{L"x-zv-device-name", std::wstring(250, L'\u0E17')}}, nullptr},
        {{{L"x-zv-device-name", L""}}, "x-zv-device-name"},
        {devices32(device, zeros), "x-zv-deviceUUID differs"},
        {devices32(zeros.substr(1), zeros.substr(1)), "has not 32 hexadecimal digits"},
        {devices32(zeros.substr(1) + "g", zeros.substr(1) + "g"), "has not 32 hexadecimal digits"},
        {trace(L"10007_11_" + now + L"_70808080"), nullptr},
        {trace(L"10007_11_" + now + L"_80808080"), "eight random digits"},
        {trace(L"10007_11_" + now + L"_70808090"), "eight random digits"},
        {trace(L"10007_11_" + now + L"_7080808"), "eight random digits"},
        {trace(L"10007_11_" + now + L"_708080808"), "eight random digits"},
        {trace(L"10007_11_" + now), "eight random digits"},
        {trace(L"10006_11_" + now + L"_70808080"), "does not begin with 10007_11_"},
        {trace(L"10007_12_" + now + L"_70808080"), "does not begin with 10007_11_"},
        {trace(L"10007_11_0" + now + L"_70808080"), "no decimal time"},
        {trace(L"10007_11__70808080"), "no decimal time"},
        {trace(L"10007_11_" + std::to_wstring(std::time(nullptr) - 87'000) + L"_70808080"), "more than a day away"},
        {trace(L"10007_11_" + std::to_wstring(std::time(nullptr) + 87'000) + L"_70808080"), "more than a day away"},
        {trace(L"10007_11_" + std::to_wstring(std::time(nullptr) - 85'000) + L"_70808080"), nullptr},
        {authorize("6::104862915::" + token), nullptr},
        {authorize("5:" + device + ":104862915::" + token), "does not decode"},
        {authorize("6:" + zeros + ":104862915::" + token), "does not decode"},
        {authorize("6:" + device + ":104862916::" + token), "does not decode"},
        {authorize("6:" + device + ":104862915:x:" + token), "does not decode"},
        {authorize("6:" + device + ":104862915::" + token.substr(1)), "the access token is not known"},
        {authorize("6:" + device + ":104862915::" + token + "%"), "not encoded as a form's value"},
        {authorize("6:" + device + ":104862915::"), "the access token is not known"},
    };
    for (const auto& row : rows) {
        HeaderMap headers = row.changed;
        headers.insert(request.headers.begin(), request.headers.end());
        const std::string reply = request.SendTo(m_sandbox, headers, request.body);
        EXPECT_EQ(reply.substr(0, 4) == "200 ", row.says == nullptr) << Narrow(row.changed.begin()->second) << reply;
        EXPECT_NE(reply.find(row.says == nullptr ? "" : row.says), std::string::npos)
            << Narrow(row.changed.begin()->second) << reply;
    }
}

TEST_F(NearMisses, KeyExchangeTokensAndLogins) {
    SignInWhole();
    UserSyncKeyService keys;
    EXPECT_TRUE(keys.InitUserSyncKey()) << LogText();
    keys.ClearUserSyncKey();
    HeaderMap cookies = m_sandbox.PortalCookies();
    EXPECT_TRUE(m_service->ExportContracts(m_sandbox.Url("/contacts/v1/export"), (m_folder / "c").wstring(), cookies));
    const std::wstring user = L"portalUser=" + cookies[L"portalUser"] + L";";
    const std::wstring ticket = L"portalTicket=" + cookies[L"portalTicket"] + L";";
    const RecordedRequest list(
        m_sandbox.Control("/sandbox/last-request?endpoint=/KeCloudUserInformationService/v1/keys"));
    const RecordedRequest login(m_sandbox.Control("/sandbox/last-request?endpoint=/contacts/v1/export"));
    const std::wstring token = list.headers.at(L"x-zv-tempKey");
    const auto other = [&token](std::size_t at) {
        std::wstring changed = token;
        changed[at] = changed[at] == L'A' ? L'B' : L'A';
        return changed;
    };
    const struct {
        const RecordedRequest& request;
        const char* name;
        const wchar_t* header;
        std::wstring value;
        const char* status;
    } rows[] = {
        {list, "as it was", L"x-zv-tempKey", token, "200 "},
        {list, "another DER header", L"x-zv-tempKey", other(0), "400 "},
        {list, "another point", L"x-zv-tempKey", other(60), "400 "},
        {list, "no colon", L"x-zv-tempKey", other(124), "400 "},
        {list, "another nonce", L"x-zv-tempKey", other(125), "400 "},
        {list, "another ciphertext", L"x-zv-tempKey", other(145), "400 "},
        {list, "another tag", L"x-zv-tempKey", other(170), "400 "},
        {list, "one letter less", L"x-zv-tempKey", token.substr(0, 184), "400 "},
        {list, "standard base64", L"x-zv-tempKey", token.substr(0, 60) + L"+" + token.substr(61), "400 "},
        {list, "another user", L"userId", L"260086000100000003", "400 "},
        {list, "another union id", L"unionID", L"260086000100000003", "400 "},
        {login, "as it was", L"Cookie", ticket + user, "200 "},
        {login, "swapped", L"Cookie", user + ticket, "403 "},
        {login, "no semicolon", L"Cookie", ticket + user.substr(0, user.size() - 1), "403 "},
        {login, "one more", L"Cookie", ticket + user + L"a=1;", "403 "},
        {login, "no ticket", L"Cookie", L"portalTicket=;" + user, "403 "},
        {login, "another user", L"Cookie", ticket + L"portalUser=260086000100000003;", "403 "},
    };
    for (const auto& row : rows) {
        HeaderMap headers = row.request.headers;
        headers[row.header] = row.value;
        EXPECT_EQ(row.request.SendTo(m_sandbox, headers, "").substr(0, 4), row.status)
            << row.request.target << " " << row.name;
    }
}
