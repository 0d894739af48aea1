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

// The extra headers join the standard set, so that one is made before.
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
    // One blank after the colon, and the code is not escaped: kept as it is. A code with a quote in it makes a body
    // that is no JSON, and the server refuses it.
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
