#include "page/BrowserGuard.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "crypto/RandomText.h"

namespace sandbox {
namespace {

constexpr std::string_view kControlStart = "/sandbox/";
constexpr std::string_view kFilesStart = "/page/";
constexpr std::string_view kLoopbackNames[] = {"127.0.0.1", "localhost", "[::1]"};

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// With or without a port.
bool IsLoopback(std::string_view host) {
    const auto bracket = host.rfind(']');
    const auto colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
    const auto port = colon == std::string_view::npos ? std::string_view("0") : host.substr(colon + 1);
    const auto name = host.substr(0, colon);
    return !port.empty() && port.find_first_not_of("0123456789") == std::string_view::npos &&
           std::any_of(std::begin(kLoopbackNames), std::end(kLoopbackNames),
                       [name](std::string_view known) { return SameHeaderName(name, known); });
}

// The scheme of the listener with the name that it was asked under.
std::string OwnOrigin(const PlatformRequest& request, const std::string& host) {
    return request.origin.substr(0, request.origin.find("://") + 3) + host;
}

}  // namespace

bool IsOfSandbox(const std::string& path) {
    return path == "/" || path == "/sign-in" || StartsWith(path, kFilesStart) || StartsWith(path, kControlStart);
}

BrowserGuard::BrowserGuard() : m_token(RandomUuid()) {}

std::string BrowserGuard::Refusal(const PlatformRequest& request) const {
    const auto host = request.head.OnlyValue("Host");
    const auto origins = request.head.Values("Origin");
    const bool ofBrowser = !origins.empty() || !request.head.Values("Sec-Fetch-Site").empty();
    if ((IsOfSandbox(request.path) || !origins.empty()) && !IsLoopback(host)) {
        return "Host is not 127.0.0.1, localhost or [::1]";
    }
    if (!origins.empty() && (origins.size() > 1 || origins.front() != OwnOrigin(request, host))) {
        return "Origin is another site";
    }
    if (ofBrowser && StartsWith(request.path, kControlStart) && !HasToken(request)) {
        return "the token of the sandbox's page is missing: load the page anew";
    }
    return {};
}

bool BrowserGuard::HasToken(const PlatformRequest& request) const {
    const auto inQuery = request.parameters.find("token");
    return request.head.OnlyValue("X-Sandbox-Token") == m_token ||
           (inQuery != request.parameters.end() && inQuery->second == m_token);
}

}  // namespace sandbox
