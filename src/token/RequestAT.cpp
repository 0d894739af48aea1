#include <Logger.h>
#include <ParamStore.h>
#include <json/value.h>

#include <cstdint>
#include <map>

#include "UserAuthService.h"
#include "core/AccountStateHold.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/SummaryLine.h"
#include "request/UserAuthRequest.h"
#include "token/ReplaceAllIgnoringCase.h"

namespace {

using userauth::kAnsiCodePage;
using userauth::MultiByteToWide;
using userauth::WideToMultiByte;
using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::RequestAT";

// Business event of the code exchange: basic event, operation, action.
constexpr int kEventRequestAT[] = {250, 5, 0};

WebRequestResult SendCode(const std::wstring& url, const std::map<std::wstring, std::wstring>& headers,
                          const char* authorizationCode, const std::wstring& traceId) {
    Json::Value body(Json::objectValue);
    body["authorizationCode"] = authorizationCode == nullptr ? "" : authorizationCode;
    body["traceId"] = WideToMultiByte(traceId, kAnsiCodePage);
    UserAuthRequest request;
    request.SetPostRequest(url, headers, JsonData(body));
    WebRequestResult result;
    request.SendWebRequest(result);
    return result;
}

struct CodeExchangeReply {
    std::wstring accessToken;
    std::wstring refreshToken;
    std::wstring countryCode;
    std::int32_t expires = 0;
    std::int32_t oauthHttpStatusCode = 0;
    std::int32_t oauthSubErrorCode = 0;
    std::string resultCode;
    std::string resultDescription;
};

CodeExchangeReply ReadReply(const char* text) {
    const userauth::Reply reply(text);
    const userauth::Reply result = reply.Member("result");
    CodeExchangeReply read;
    read.accessToken = MultiByteToWide(reply.Text("accessToken"), kAnsiCodePage);
    read.refreshToken = MultiByteToWide(reply.Text("refreshToken"), kAnsiCodePage);
    read.countryCode = MultiByteToWide(reply.Text("registerCountryCode"), kAnsiCodePage);
    read.expires = reply.Integer("expires");
    read.oauthHttpStatusCode = reply.Integer("oauthHttpStatusCode");
    read.oauthSubErrorCode = reply.Integer("oauthSubErrorCode");
    read.resultCode = result.StyledText("code");
    userauth::ReplaceAllIgnoringCase(read.resultCode, "\"", "");
    userauth::ReplaceAllIgnoringCase(read.resultCode, "\n", "");
    read.resultDescription = result.StyledText("desc");  // deliberately keeps its quotes and its line feed
    return read;
}

void LogSummary(const std::wstring& url, int httpCode, const std::string& resultCode) {
    // The description is deliberately not appended after its label.
    WriteLog(kSeveritySummary, __LINE__, kTag,
             userauth::SummaryLine("RequestAT", url, httpCode) + L"\nResultCode:" +
                 MultiByteToWide(resultCode, userauth::kUtf8CodePage) + L"\nDescription:");
}

}  // namespace

// The first argument is deliberately not used: the code that goes to the server is the second one.
bool UserAuthService::RequestAT(std::string /*code*/, const char* authorizationCode) try {
    const std::wstring traceId = GetTraceID(BaseCmd::kRequestAccessToken);
    const std::map<std::wstring, std::wstring> headers = BuildHeaders(HeadType::kCodeExchange, traceId);
    const std::wstring url =
        GlobalParamWrapper::GetInstance()->GetPortalUrl() + L"/pcclient/getAccessTokenByCode?traceId=" + traceId;
    const WebRequestResult result = SendCode(url, headers, authorizationCode, traceId);

    // The line names another operation than this one: kept, log evaluations look for it.
    WriteLog(kSeverityProgress, __LINE__, kTag, L"RequestCountryCode httpcode:" + std::to_wstring(result.nHttpCode));
    bool succeeded = false;
    if (result.nHttpCode == userauth::kHttpOk) {
        const CodeExchangeReply reply = ReadReply(result.szResponse);
        SetCurrentAT(reply.accessToken);
        SetCurrentRT(reply.refreshToken);
        {
            const userauth::ExclusiveHold hold(m_lock);
            m_strCountryCode = reply.countryCode;
        }
        if (reply.countryCode.empty() || reply.accessToken.empty()) {
            // This outcome deliberately has neither the summary nor the operation log.
            WriteLog(kSeverityFailure, __LINE__, kTag, L"Get registerCountryCode from portal fail");
            return false;
        }
        WriteLog(kSeverityProgress, __LINE__, kTag, L"Get registerCountryCode successed:" + reply.countryCode);
        {
            const userauth::ExclusiveHold hold(m_lock);
            m_nAtExpires = reply.expires;
            m_nOauthHttpStatusCode = reply.oauthHttpStatusCode;
            m_nOauthSubErrorCode = reply.oauthSubErrorCode;
            m_strResultCode = reply.resultCode;
            m_strResultDesc = reply.resultDescription;
        }
        succeeded = reply.resultCode == "0";
        // Written whatever the result code is.
        WriteLog(kSeverityProgress, __LINE__, kTag, L"Get AT successed!");
    }

    std::string lastResultCode;
    {
        const userauth::SharedHold hold(m_lock);
        lastResultCode = m_strResultCode;
    }
    LogSummary(url, result.nHttpCode, lastResultCode);
    Logger::OutputOperationLog(kEventRequestAT[0], kEventRequestAT[1], kEventRequestAT[2]);
    return succeeded;
} catch (...) {
    return false;
}
