#include "platform/SandboxClient.h"

#include <HttpLib.h>

#include "platform/ExchangeLog.h"
#include "text/JsonObject.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr int kHttpOk = 200;
constexpr int kLongestSeconds = 10;

// Whether it answered 200.
bool Request(BasicHttpLibStrategy& strategy, const std::string& url, std::string& reply) {
    const ExchangeLogPause pause;
    strategy.SetUrl(ToWide(url));
    return CurlHttpLibContext(&strategy).Request(reply, kLongestSeconds) == kHttpOk;
}

}  // namespace

std::optional<Json::Value> AskSandbox(const std::string& baseUrl, const std::string& path) {
    BasicHttpLibStrategy strategy;
    strategy.SetHttpRequestMethod(HttpRequestMethod::kGet);
    std::string reply;
    return Request(strategy, baseUrl + path, reply) ? ParseJsonObject(reply) : std::nullopt;
}

bool TellSandbox(const std::string& baseUrl, const std::string& path, const std::string& json) {
    BasicHttpLibStrategy strategy;
    strategy.SetHttpRequestMethod(HttpRequestMethod::kPost);
    strategy.SetHeaders({{L"Content-Type", L"application/json"}});
    strategy.SetPostData(ToWide(json));
    std::string reply;
    return Request(strategy, baseUrl + path, reply);
}

}  // namespace host
