#include <Logger.h>
#include <ParamStore.h>
#include <json/value.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include "UserAuthService.h"
#include "core/AccountStateHold.h"
#include "core/ServiceLog.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

namespace {

using userauth::kAnsiCodePage;
using userauth::MultiByteToWide;
using userauth::WideToMultiByte;
using userauth::WriteLog;

constexpr char kTag[] = "UserAuthService::RequestAT";

// Business event of the code exchange: basic event, operation, action.
constexpr int kEventRequestAT[] = {250, 5, 0};

userauth::WebRequestResult SendCode(const std::wstring& url, std::map<std::wstring, std::wstring> headers,
                                    const char* authorizationCode, const std::wstring& traceId) {
    Json::Value body(Json::objectValue);
    body["authorizationCode"] = authorizationCode == nullptr ? "" : authorizationCode;
    body["traceId"] = WideToMultiByte(traceId, kAnsiCodePage);
    userauth::UserAuthRequest request;
    request.SetPostRequest(url, std::move(headers), userauth::JsonData(std::move(body)));
    userauth::WebRequestResult result;
    request.SendWebRequest(result);
    return result;
}

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

// Replaces every non-overlapping occurrence of a pattern, from left to right, ignoring the case of ASCII letters. An
// empty pattern or subject leaves the subject as it is.
void ReplaceAllIgnoringCase(std::string& subject, const std::string& pattern, const std::string& replacement) {
    if (subject.empty() || pattern.empty()) {
        return;
    }
    const std::string lowered = Lowered(subject);
    const std::string wanted = Lowered(pattern);
    std::string rebuilt;
    std::size_t position = 0;
    for (std::size_t found = lowered.find(wanted); found != std::string::npos; found = lowered.find(wanted, position)) {
        rebuilt.append(subject, position, found - position).append(replacement);
        position = found + wanted.size();
    }
    subject = rebuilt.append(subject, position, std::string::npos);
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
    ReplaceAllIgnoringCase(read.resultCode, "\"", "");
    ReplaceAllIgnoringCase(read.resultCode, "\n", "");
    read.resultDescription = result.StyledText("desc");  // keeps its quotes and its line feed, as it always has
    return read;
}

// Both tokens, or neither when memory runs out between them: two of different sign-ins are of no use. The way back
// takes memory too: when there is none for it either, the access token is the new one.
void StoreTokens(UserAuthService& service, const CodeExchangeReply& reply) {
    const std::wstring former = service.GetCurrentAT();
    service.SetCurrentAT(reply.accessToken);
    try {
        service.SetCurrentRT(reply.refreshToken);
    } catch (...) {
        service.SetCurrentAT(former);
        throw;
    }
}

// The tokens are stored by now: for want of memory the line is lost, and the result stands.
void LogCountry(const std::wstring& countryCode) try {
    WriteLog(kSeverityProgress, __LINE__, kTag, L"Get registerCountryCode successed:" + countryCode);
} catch (...) {
    return;
}

void LogSummary(const std::wstring& url, int httpCode, AccountStateLock& lock, const std::string& resultCode) try {
    std::string lastResultCode;
    {
        const userauth::SharedHold hold(lock);
        lastResultCode = resultCode;
    }
    // The line ends with the label of the description: kept as it is.
    WriteLog(kSeveritySummary, __LINE__, kTag,
             userauth::SummaryLine("RequestAT", url, httpCode) + L"\nResultCode:" +
                 MultiByteToWide(lastResultCode, userauth::kUtf8CodePage) + L"\nDescription:");
} catch (...) {
    return;
}

}  // namespace

// The first argument is not used: kept as it is. The second one goes to the server.
bool UserAuthService::RequestAT(std::string /*code*/, const char* authorizationCode) try {
    const std::wstring traceId = GetTraceID(BaseCmd::kRequestAccessToken);
    std::map<std::wstring, std::wstring> headers = BuildHeaders(HeadType::kCodeExchange, traceId);
    const std::wstring url =
        GlobalParamWrapper::GetInstance()->GetPortalUrl() + L"/pcclient/getAccessTokenByCode?traceId=" + traceId;
    const userauth::WebRequestResult result = SendCode(url, std::move(headers), authorizationCode, traceId);

    // The line names another operation than this one. Kept as it is.
    WriteLog(kSeverityProgress, __LINE__, kTag, L"RequestCountryCode httpcode:" + std::to_wstring(result.nHttpCode));
    bool succeeded = false;
    if (result.nHttpCode == userauth::kHttpOk) {
        CodeExchangeReply reply = ReadReply(result.szResponse);
        const std::wstring country = reply.countryCode;
        StoreTokens(*this, reply);
        {
            const userauth::ExclusiveHold hold(m_lock);
            m_strCountryCode.swap(reply.countryCode);
        }
        if (country.empty() || reply.accessToken.empty()) {
            // This outcome has neither the summary nor the operation log: kept as it is.
            WriteLog(kSeverityFailure, __LINE__, kTag, L"Get registerCountryCode from portal fail");
            return false;
        }
        LogCountry(country);
        succeeded = reply.resultCode == "0";
        {
            const userauth::ExclusiveHold hold(m_lock);
            m_nAtExpires = reply.expires;
            m_nOauthHttpStatusCode = reply.oauthHttpStatusCode;
            m_nOauthSubErrorCode = reply.oauthSubErrorCode;
            m_strResultCode.swap(reply.resultCode);
            m_strResultDesc.swap(reply.resultDescription);
        }
        // Written whatever the result code is: kept as it is.
        WriteLog(kSeverityProgress, __LINE__, kTag, L"Get AT successed!");
    }

    LogSummary(url, result.nHttpCode, m_lock, m_strResultCode);
    Logger::OutputOperationLog(kEventRequestAT[0], kEventRequestAT[1], kEventRequestAT[2]);
    return succeeded;
} catch (...) {
    return false;
}
