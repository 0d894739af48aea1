#include <Logger.h>
#include <ParamStore.h>

#include <memory>

#include "UserAuthService.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/UserAuthRequest.h"

namespace {

using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::GetAccessTokenByRefrshToken";

// Business event of the refresh: basic event, operation, action.
constexpr int kEventRefresh[] = {321, 0, 0};

userauth::WebRequestResult SendRefresh(const std::wstring& refreshToken, const std::wstring& userId,
                                       const std::wstring& traceId) {
    const GlobalParamWrapper* const store = GlobalParamWrapper::GetInstance();
    userauth::UserAuthRequest::HeaderMap headers;
    headers[L"refreshToken"] = refreshToken;
    headers[L"deviceId"] = store->GetSystemUUid();
    headers[L"userId"] = userId;
    headers[L"Cookie"] = L"siteID=1";  // whatever the user's site is
    userauth::UserAuthRequest request;
    request.SetPostRequest(store->GetPortalUrl() + L"/pcclient/refreshtoken?traceId=" + traceId, headers,
                           userauth::JsonData());
    userauth::WebRequestResult result;
    request.SendWebRequest(result);
    return result;
}

// The callback is the host's: what it throws must not leave the operation, nor skip the line that follows. It may
// register another one; the copy only keeps the running one alive (SetAtExpireCallback).
void RunAtExpireCallback(const std::function<void()>& registered) {
    if (!registered) {
        return;
    }
    WriteLog(kSeverityProgress, __LINE__, kTag, L"atExpireCallback");
    try {
        const std::function<void()> callback = registered;
        callback();
    } catch (...) {
        return;
    }
}

}  // namespace

RefreshTokenOperate::~RefreshTokenOperate() = default;

// One copy of the host's callable, shared: a running callback stays alive when it registers another one, and what it
// keeps between calls is kept.
void UserAuthService::SetAtExpireCallback(const std::function<void()>& callback) try {
    std::function<void()> stored;
    if (callback) {
        stored = [shared = std::make_shared<std::function<void()>>(callback)] { (*shared)(); };
    }
    m_atExpireCallback.swap(stored);
} catch (...) {
    return;  // a callable that cannot be copied: the former one stays
}

#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Wignored-qualifiers"  // the const result is part of the exported signature
#endif

const bool UserAuthService::GetAccessTokenByRefrshToken() try {
    WriteLog(kSeverityProgress, __LINE__, kTag, L"refresh AT start");
    if (GetCurrentRT().empty()) {
        WriteLog(kSeverityFailure, __LINE__, kTag, L"refresh AT error rt is empty");
        return false;
    }
    const std::wstring traceId = GetTraceID(BaseCmd::kRefreshAccessToken);
    const userauth::WebRequestResult result = SendRefresh(GetCurrentRT(), GetCurrentUserID(), traceId);
    const userauth::Reply reply(result.szResponse);
    Logger::OutputOperationLog(kEventRefresh[0], kEventRefresh[1], kEventRefresh[2]);

    if (result.nHttpCode == userauth::kHttpOk) {
        // Of "result" only the presence counts. The reply carries no refresh token; the stored one stays.
        const std::wstring accessToken =
            reply.Has("result") ? userauth::MultiByteToWide(reply.Text("token"), userauth::kAnsiCodePage) : L"";
        if (!accessToken.empty()) {
            SetCurrentAT(accessToken);
            WriteLog(kSeverityProgress, __LINE__, kTag, L"refresh AT success");
            GlobalParamWrapper::GetInstance()->SetAtIsExpired(false);
            return true;
        }
        // Only here: a transport error or another status says nothing about the refresh token, and nobody is to sign in
        // again for it.
        RunAtExpireCallback(m_atExpireCallback);
    }
    WriteLog(kSeverityFailure, __LINE__, kTag, L"refresh AT error statusCode: " + std::to_wstring(result.nHttpCode));
    return false;
} catch (...) {
    return false;
}
