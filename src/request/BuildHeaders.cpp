#include <ParamStore.h>

#include <utility>

#include "UserAuthService.h"
#include "core/Base64.h"
#include "core/DeploymentConstants.h"
#include "core/TextEncoding.h"
#include "request/DeviceIdentity.h"
#include "request/OsVersionText.h"

namespace {

using HeaderMap = std::map<std::wstring, std::wstring>;
using userauth::kAnsiCodePage;
using userauth::MultiByteToWide;
using userauth::WideToMultiByte;

constexpr wchar_t kJson[] = L"application/json";

// The first value given for a name stays, here and in the sets below. In the order of the map, which has to look for no
// place then.
HeaderMap CommonHeaders(const std::wstring& traceId) {
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    std::wstring systemUuid = store->GetSystemUUid();
    HeaderMap headers;
    const auto add = [&headers](const wchar_t* name, auto&& value) {
        headers.emplace_hint(headers.end(), name, std::forward<decltype(value)>(value));
    };
    add(L"Accept-Language", L"zh-CN");
    add(L"Host", userauth::kAccountWebHost);
    add(L"User-Agent", std::wstring(userauth::kProductTag) + L"/" + userauth::kClientVersion);
    add(L"x-zv-auth-version", userauth::kAuthorizationVersion);
    add(L"x-zv-client-mode", store->GetZvClientMode());
    add(L"x-zv-country-code", store->GetCountryCode());
    add(L"x-zv-device-id", systemUuid);
    add(L"x-zv-device-name", userauth::DeviceNameHeader(userauth::CurrentDeviceIdentity()));
    add(L"x-zv-device-type", userauth::kDeviceType);
    add(L"x-zv-deviceUUID", std::move(systemUuid));
    add(L"x-zv-os-brand", userauth::kOsBrand);
    add(L"x-zv-source-agent", userauth::kProductTag);
    add(L"x-zv-terminal", userauth::kTerminal);
    add(L"x-zv-trace-id", traceId);
    return headers;
}

}  // namespace

// BuildHeaders, GetAuthorizationContents and GetTraceID let std::bad_alloc out: the operation that called them fails
// then, and nothing is sent with half its headers.
std::map<std::wstring, std::wstring> UserAuthService::BuildHeaders(HeadType type, const std::wstring& traceId) {
    HeaderMap headers = CommonHeaders(traceId);
    const auto authorization = [this] {
        const std::string contents = GetAuthorizationContents();
        return std::wstring(contents.begin(), contents.end());  // ASCII, which is the same in every code page
    };
    switch (type) {
        case HeadType::kAccount:
            headers.emplace(L"Authorization", authorization());
            headers.emplace(L"Content-Type", kJson);
            break;
        case HeadType::kUser:
            headers.emplace(L"userId", GetCurrentUserID());
            headers.emplace(L"Authorization", authorization());
            headers.emplace(L"version", userauth::kClientVersion);
            headers.emplace(L"x-zv-device-category", L"PC");
            break;
        case HeadType::kDevice:
            headers.emplace(L"userId", GetCurrentUserID());
            headers.emplace(L"Authorization", authorization());
            headers.emplace(L"version", userauth::kClientVersion);
            headers.emplace(L"Content-Type", kJson);
            headers.emplace(L"x-zv-os", userauth::OsVersionText());
            headers.emplace(L"AuthType",
                            MultiByteToWide(userauth::EncodeStandardBase64(userauth::kPackageName), kAnsiCodePage));
            // A leftover without effect: the common "Host" stays. Kept as it is.
            headers.emplace(L"Host", userauth::kAccountTestHost);
            break;
        case HeadType::kCodeExchange:
            headers.emplace(L"Authorization", L"");
            headers.emplace(L"Content-Type", kJson);
            headers.emplace(L"Cookie", L"siteID=1");
            break;
        case HeadType::kAccessToken:
            headers.emplace(L"Content-Type", kJson);
            headers.emplace(L"Authorization", GetCurrentAT());
            break;
    }
    return headers;
}

// Base64 of "6:<SDK text>:<application id>::<URL-encoded access token>"; 6 is this client's device type.
std::string UserAuthService::GetAuthorizationContents() {
    const std::wstring fields =
        std::wstring(userauth::kDeviceType) + L":" + m_strSdkDeviceId + L":" + userauth::kApplicationId + L"::";
    return userauth::EncodeStandardBase64(WideToMultiByte(fields, kAnsiCodePage) +
                                          userauth::UrlEncodeToBytes(GetCurrentAT()));
}
