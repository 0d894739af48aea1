#include "PlatformClient.h"

#include <httplib.h>

#include "JsonText.h"

namespace accountsdk {
namespace {

constexpr time_t kConnectSeconds = 5;
constexpr time_t kReadSeconds = 10;
constexpr std::size_t kLongestReply = 64 * 1024;

// Instead of a status: no reply, or one beyond kLongestReply.
constexpr int kNone = 0;
constexpr int kTooLong = -1;

struct Reply {
    int status = kNone;
    std::string text;  // the body; with kNone the reason in words
};

Reply Send(httplib::Client& http, httplib::Request request) {
    std::string body;
    request.content_receiver = [&body](const char* data, std::size_t size, std::uint64_t, std::uint64_t) {
        body.append(data, size);
        return body.size() <= kLongestReply;
    };
    const httplib::Result result = http.send(request);
    if (body.size() > kLongestReply) {
        return {kTooLong, ""};
    }
    return result ? Reply{result->status, std::move(body)} : Reply{kNone, httplib::to_string(result.error())};
}

}  // namespace

struct PlatformClient::Http {
    explicit Http(const PlatformUrl& platform) : url(platform), client(platform.host, platform.port) {
        client.set_connection_timeout(kConnectSeconds);
        client.set_read_timeout(kReadSeconds);
        client.set_write_timeout(kReadSeconds);
    }

    PlatformUrl url;
    httplib::Client client;
};

PlatformClient::PlatformClient(const PlatformUrl& platform) : m_http(std::make_unique<Http>(platform)) {}
PlatformClient::~PlatformClient() = default;

SignInReply PlatformClient::SignIn(const SignInArguments& arguments) {
    Json::Value body;
    body["applicationId"] = arguments.applicationId;
    body["scopes"] = arguments.scopes;
    body["location"] = arguments.location;
    httplib::Request request;
    request.method = "POST";
    request.path = m_http->url.path + "/sandbox/sign-in";
    request.set_header("Content-Type", "application/json");
    request.body = CompactText(body);

    const Reply reply = Send(m_http->client, std::move(request));
    if (reply.status == kNone) {
        return {kNoAnswer, "", "no account platform answers at " + m_http->url.text + " (" + reply.text + ")"};
    }
    const Json::Value root = ParseObject(reply.text);
    const std::string code = TextMember(root, "code");
    if (reply.status == 200 && !code.empty()) {
        return {kOk, code, ""};
    }
    const std::string error = TextMember(root, "error");
    if (reply.status == 400 && !error.empty()) {
        return {kSignInRefused, "", error};
    }
    const std::string what = reply.status == kTooLong ? "too long" : "HTTP " + std::to_string(reply.status);
    return {kBadAnswer, "", "the account platform's reply is not a sign-in reply (" + what + ")"};
}

SessionReply PlatformClient::CurrentSession() {
    httplib::Request request;
    request.method = "GET";
    request.path = m_http->url.path + "/sandbox/session";
    const Reply reply = Send(m_http->client, std::move(request));
    if (reply.status == kNone) {
        return {kNoAnswer, ""};
    }
    const Json::Value root = ParseObject(reply.text);
    if (reply.status != 200 || root.isNull() || !root["signedIn"].isBool()) {
        return {kBadAnswer, ""};
    }
    if (!root["signedIn"].asBool()) {
        return {kNotSignedIn, ""};
    }
    std::string userId = TextMember(root, "userId");
    return {userId.empty() ? kBadAnswer : kOk, std::move(userId)};
}

}  // namespace accountsdk
