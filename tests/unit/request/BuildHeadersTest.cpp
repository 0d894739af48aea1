#include "ServiceFixture.h"
#include "request/DeviceIdentity.h"
#include "request/OsVersionText.h"

using BuildHeaders = ServiceTest;

namespace {

Headers CommonHeaders() {
    return {
        {L"User-Agent", L"NimbaPC/11.2.4.301"},
        {L"x-zv-trace-id", L"trace"},
        {L"x-zv-source-agent", L"NimbaPC"},
        {L"Accept-Language", L"zh-CN"},
        {L"x-zv-device-id", L"00112233445566778899aabbccddeeff"},
        {L"x-zv-deviceUUID", L"00112233445566778899aabbccddeeff"},
        {L"x-zv-device-type", L"6"},
        {L"x-zv-terminal", L"PC"},
        {L"x-zv-device-name", userauth::DeviceNameHeader(userauth::CurrentDeviceIdentity())},
        {L"x-zv-auth-version", L"1"},
        {L"x-zv-country-code", L"TH"},
        {L"x-zv-client-mode", L"1"},
        {L"x-zv-os-brand", L"Windows"},
        {L"Host", L"account.example.com"},
    };
}

Headers operator+(Headers left, const Headers& right) {
    left.insert(right.begin(), right.end());
    return left;
}

}  // namespace

TEST_F(BuildHeaders, EachHeadTypeAddsItsOwnHeadersToTheCommonOnes) {
    m_service->SetCurrentAT(L"a+/\u00E9");
    m_service->SetCurrrentUserID(L"uid");
    // base64 of 6::104862915::a%2B%2F%E9
    const std::wstring authorization = L"Njo6MTA0ODYyOTE1OjphJTJCJTJGJUU5";
    const Headers account = {{L"userId", L"uid"}, {L"Authorization", authorization}, {L"version", L"11.2.4.301"}};
    const struct {
        int type;
        Headers further;
    } rows[] = {
        {0, {{L"Authorization", authorization}, {L"Content-Type", L"application/json"}}},
        {1, account + Headers{{L"x-zv-device-category", L"PC"}}},
        {2, account + Headers{{L"Content-Type", L"application/json"},
                              {L"x-zv-os", userauth::OsVersionText()},
                              {L"AuthType", L"Y29tLnpvcnZhbi5jbG91ZC5wYw=="}}},
        {3, {{L"Authorization", L""}, {L"Content-Type", L"application/json"}, {L"Cookie", L"siteID=1"}}},
        {4, {{L"Content-Type", L"application/json"}, {L"Authorization", L"a+/\u00E9"}}},
        {5, {}},
        {-1, {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(UserAuthServiceAccess::BuildHeaders(*m_service, static_cast<HeadType>(row.type), L"trace"),
                  CommonHeaders() + row.further)
            << "HeadType " << row.type;
    }
}

// Real tokens are longer than a base64 line and than the filter's inner buffer.
TEST_F(BuildHeaders, AuthorizationOfALongTokenStaysOnOneLine) {
    m_service->SetCurrentAT(std::wstring(3000, L'a'));
    const std::string text = UserAuthServiceAccess::Authorization(*m_service);
    EXPECT_EQ(text.size(), (3014 + 2) / 3 * 4U);
    std::string aaa;
    while (aaa.size() < 3900) {
        aaa += "YWFh";
    }
    EXPECT_NE(text.find(aaa), std::string::npos);
}

TEST_F(BuildHeaders, AuthorizationCarriesTheSdkTextOnceTheSdkIsInitialised) {
    EXPECT_EQ(UserAuthServiceAccess::Authorization(*m_service), "Njo6MTA0ODYyOTE1Ojo=");  // 6::104862915::
    m_service->InitializeSDK();
    // 6:00112233445566778899aabbccddeeff:104862915::
    EXPECT_EQ(UserAuthServiceAccess::Authorization(*m_service),
              "NjowMDExMjIzMzQ0NTU2Njc3ODg5OWFhYmJjY2RkZWVmZjoxMDQ4NjI5MTU6Og==");
}
