#include <chrono>
#include <utility>

#include "CertificateAuthorities.h"
#include "Exchange.h"
#include "HttpLib.h"
#include "ObserverSlot.h"
#include "ProcessState.h"
#include "ReplySink.h"
#include "RequestCheck.h"
#include "UrlText.h"
#include "Utf8Text.h"

namespace suite {

namespace {

// Never destroyed: a request may still look for it while the process ends.
ObserverSlot<const HttpExchange&>& ExchangeSlot() {
    static auto* const slot = new ObserverSlot<const HttpExchange&>;
    return *slot;
}

// What the host hands in may throw; an exchange's result does not depend on it.
template <typename Call>
void DropExceptions(Call call) {
    try {
        call();
    } catch (...) {
    }
}

ExchangeOutcome Attempt(const IHttpLibStrategy& strategy, const GivenUrl& url, int timeoutSeconds, ReplySink& sink) {
    auto checked = CheckRequest(strategy, url);
    if (const auto* refusal = std::get_if<std::string>(&checked)) {
        return {kHttpInvalidRequest, *refusal};
    }
    auto& request = std::get<CheckedRequest>(checked);
    return PerformExchange(std::move(request), strategy.CertPath(), timeoutSeconds, sink);
}

std::wstring Milliseconds(double milliseconds) {
    const auto tenths = static_cast<long long>(milliseconds * 10);
    return std::to_wstring(tenths / 10) + L"." + std::to_wstring(tenths % 10) + L" ms";
}

// The texts for the log never hold a header, a body, a query or user information.
std::wstring FinishText(const HttpExchange& exchange) {
    std::wstring text = L"HTTP: " + exchange.method + L" " + exchange.url + L" ended with " +
                        std::to_wstring(exchange.code) + L" after " + Milliseconds(exchange.milliseconds);
    if (exchange.code > 0) {
        text += exchange.connectionReused ? L", connection reused" : L", new connection";
    }
    return text;
}

std::wstring FailureText(const HttpExchange& exchange, const std::string& host, const std::string& cause) {
    return L"HTTP: " + exchange.method + L" " +
           suite::WideFromUtf8((host.empty() ? "request" : host) + " failed: " + cause);
}

int Execute(const IHttpLibStrategy& strategy, int timeoutSeconds, ReplySink& sink) {
    const auto start = std::chrono::steady_clock::now();
    const GivenUrl url = ReadUrl(suite::Utf8FromWide(strategy.Url()));
    const UrlParts parts = url.parts.value_or(UrlParts());  // empty for a URL that is refused
    HttpExchange exchange;
    exchange.method = strategy.Method() == HttpRequestMethod::kPost ? L"POST" : L"GET";
    exchange.url = suite::WideFromUtf8(parts.display);
    DropExceptions([&] { strategy.Log(L"HTTP: " + exchange.method + L" " + exchange.url + L" started"); });
    ExchangeOutcome outcome;
    try {
        outcome = Attempt(strategy, url, timeoutSeconds, sink);
    } catch (const std::exception& error) {
        outcome = {kHttpInternalError, error.what()};
    }
    exchange.code = outcome.code;
    exchange.connectionReused = outcome.connectionReused;
    exchange.milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    if (outcome.code < 0) {
        const std::string& host = outcome.host.empty() ? parts.authority : outcome.host;
        DropExceptions([&] { strategy.LogError(FailureText(exchange, host, outcome.cause)); });
    }
    DropExceptions([&] { strategy.Log(FinishText(exchange)); });
    ExchangeSlot().Tell(exchange);
    return outcome.code;
}

// takeReply: called when there is a reply. A strategy may be the host's own class, and its getters may throw.
template <typename TakeReply>
int ExecuteOrRefuse(const IHttpLibStrategy* strategy, int timeoutSeconds, ReplySink& sink, TakeReply takeReply) {
    if (strategy == nullptr) {
        return kHttpInvalidRequest;
    }
    if (suite::ProcessIsEnding()) {
        return kHttpInternalError;
    }
    try {
        const int code = Execute(*strategy, timeoutSeconds, sink);
        if (code > 0) {
            takeReply();
        }
        return code;
    } catch (...) {
        return kHttpInternalError;
    }
}

}  // namespace

}  // namespace suite

CurlHttpLibContext::CurlHttpLibContext(IHttpLibStrategy* strategy) : m_strategy(strategy) {}
CurlHttpLibContext::~CurlHttpLibContext() = default;

int CurlHttpLibContext::Request(std::string& response, int timeoutSeconds) {
    response.clear();
    suite::ReplySink sink(nullptr, false);
    return suite::ExecuteOrRefuse(m_strategy, timeoutSeconds, sink, [&] { response = sink.TakeText(); });
}

int CurlHttpLibContext::Request(std::string& response, std::map<std::string, std::string>& replyHeaders) {
    response.clear();
    replyHeaders.clear();
    suite::ReplySink sink(nullptr, true);
    return suite::ExecuteOrRefuse(m_strategy, -1, sink, [&] {
        replyHeaders = sink.TakeHeaders();
        response = sink.TakeText();
    });
}

int CurlHttpLibContext::Request(std::string& response, void* fileTransferHandler) {
    response.clear();
    if (fileTransferHandler == nullptr) {
        suite::DropExceptions([this] {
            if (m_strategy != nullptr) {
                m_strategy->LogError(L"HTTP: request failed: a download without a file transfer handler");
            }
        });
        return kHttpInvalidRequest;
    }
    suite::ReplySink sink(static_cast<FileTransferHandler*>(fileTransferHandler), false);
    return suite::ExecuteOrRefuse(m_strategy, -1, sink, [] {});
}

void CurlHttpLibContext::SetDefaultCertPath(const std::wstring& path) {
    if (!suite::ProcessIsEnding()) {
        suite::SetDefaultAuthoritiesPath(path);
    }
}

void CurlHttpLibContext::SetExchangeObserver(std::function<void(const HttpExchange&)> observer) {
    if (!suite::ProcessIsEnding()) {
        suite::ExchangeSlot().Set(std::move(observer));
    }
}

void CurlHttpLibContext::SetDownloadObserver(std::function<void(std::uint64_t)> observer) {
    if (!suite::ProcessIsEnding()) {
        suite::DownloadSlot().Set(std::move(observer));
    }
}
