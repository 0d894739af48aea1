#include "platform/PlatformCheck.h"

#include <HttpLib.h>

#include <map>

#include "system/HostError.h"
#include "text/TextEncoding.h"

namespace host {
namespace {

constexpr int kLongestSeconds = 10;

// What is wrong with the platform, and what to do about it.
std::string Cause(int error, const std::string& url) {
    switch (error) {
        case kHttpInvalidRequest:
            return url + " is no URL that can be asked: look at its host and its port, a number from 1 to 65535";
        case kHttpNameNotResolved:
            return "the host name in " + url + " has no address: check the spelling and the network";
        case kHttpConnectFailed:
            return "no account platform answers at " + url +
                   ": start one with sandbox-server.exe, or name another with --platform";
        case kHttpTimeout:
            return url + " does not answer within 10 s";
        case kHttpCertificateUntrusted:
            return "the certificate of " + url +
                   " is not trusted: name the file of its authority with --certificate-authority";
        case kHttpCertificateWrongName:
            return "the certificate of " + url + " is made out to another host";
        case kHttpTlsFailed:
            return url + " speaks no TLS 1.2 or newer: is it meant to be http?";
        case kHttpCertificateFileInvalid:
            return "the file of --certificate-authority holds no certificate";
        case kHttpConnectionBroken:
            return url + " breaks the connection: is it meant to be https?";
        default:
            return "no exchange with " + url + " is possible: HTTP library error " + std::to_string(error);
    }
}

void AskForRoot(BasicHttpLibStrategy& strategy, const std::string& platformUrl) {
    strategy.SetUrl(ToWide(platformUrl + "/"));
    strategy.SetHttpRequestMethod(HttpRequestMethod::kGet);
}

}  // namespace

void RequirePlatform(const std::string& platformUrl) {
    BasicHttpLibStrategy strategy;
    AskForRoot(strategy, platformUrl);
    std::string reply;
    const int code = CurlHttpLibContext(&strategy).Request(reply, kLongestSeconds);
    if (code < 0) {
        const bool usage = code == kHttpCertificateFileInvalid || code == kHttpInvalidRequest;
        throw HostError(usage ? kExitUsage : kExitStepFailed, Cause(code, platformUrl));
    }
}

std::string PlatformDate(const std::string& platformUrl) {
    BasicHttpLibStrategy strategy;
    AskForRoot(strategy, platformUrl);
    std::string reply;
    std::map<std::string, std::string> headers;
    CurlHttpLibContext(&strategy).Request(reply, headers);
    for (const auto& [name, value] : headers) {
        if (AsciiLower(name) == "date") {
            return value;
        }
    }
    return "";
}

}  // namespace host
