#include "sysconf/BasicServiceRequest.h"

#include <ParamStore.h>

#include "core/AccountStateHold.h"
#include "core/DeploymentConstants.h"
#include "request/RequestLog.h"
#include "request/UserAuthRequest.h"

namespace userauth {
namespace {

constexpr int kHttpCreated = 201;

std::wstring Copy(AccountStateLock& lock, const std::wstring& field) {
    const ExclusiveHold hold(lock);
    return field;
}

// Kept in this order: the extra headers join a standard set that has been made before.
void Describe(const BasicServiceRequest& request, BasicHttpLibStrategy& strategy) {
    strategy.SetUrl(request.url);
    strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
    strategy.SetPostData(request.body);
    strategy.SetHeaders(request.userId, kApplicationId, request.accessToken);
    strategy.SetCertPath(kCertificatePath);
    strategy.SetLogFunction(HttpLogHook(kSeveritySummary, request.logHook));
    if (request.errorLogHook != nullptr) {
        strategy.SetErrorLogFunction(HttpLogHook(kSeverityFailure, request.errorLogHook));
    }
    if (!request.extraHeaders.empty()) {
        BasicHttpLibStrategy::HeaderMap headers = strategy.GetHeaders();
        headers.insert(request.extraHeaders.begin(), request.extraHeaders.end());
        strategy.SetHeaders(headers);
    }
}

}  // namespace

BasicServiceRequest::BasicServiceRequest(AccountStateLock& lock, const std::wstring& currentUserId,
                                         const std::wstring& currentToken)
    : userId(Copy(lock, currentUserId)), accessToken(Copy(lock, currentToken)) {}

void AskForSysConf(BasicServiceRequest& request, const std::wstring& countryCode) {
    // Deliberately not escaped: the server compares the text, one blank after the colon. A country code with a quote in
    // it makes it refuse the request.
    request.body = L"{\"country\": \"" + countryCode + L"\"}";
    request.extraHeaders = {{L"x-zv-active-method", L"manual"}};
}

std::wstring BasicServiceUrl(const wchar_t* operation) {
    return GlobalParamWrapper::GetInstance()->GetBasicUrl() + L"/KeCloudUserFoundationService/PC/" + operation;
}

int SendBasicServiceRequest(const BasicServiceRequest& request, std::string& reply) {
    try {
        BasicHttpLibStrategy strategy;
        Describe(request, strategy);
        return CurlHttpLibContext(&strategy).Request(reply, kDefaultTimeout);
    } catch (...) {
        reply.clear();
        return 0;
    }
}

bool IsBasicServiceSuccess(int httpCode) {
    return httpCode == kHttpOk || httpCode == kHttpCreated;
}

}  // namespace userauth
