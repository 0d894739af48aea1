#include "PlatformClient.h"

#include <httplib.h>

#include "JsonText.h"

namespace accountsdk {
namespace {

constexpr time_t kConnectSeconds = 5;
constexpr time_t kReadSeconds = 10;
constexpr std::size_t kLongestReply = 64 * 1024;
constexpr const char* kSignInPath = "/sandbox/sign-in";
constexpr int kTooManyWait = 503;
constexpr std::size_t kRequestIdDigits = 32;

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

// What a reply is that is not the agreed one.
SignInReply OutcomeOf(const Reply& reply, const std::string& platform) {
    if (reply.status == kNone) {
        return {kNoAnswer, "", "no account platform answers at " + platform + " (" + reply.text + ")"};
    }
    const std::string what = reply.status == kTooLong ? "too long" : "HTTP " + std::to_string(reply.status);
    return {kBadAnswer, "", "the account platform's reply is not a sign-in reply (" + what + ")"};
}

// How a person's sign-in ends without a code.
constexpr struct {
    const char* state;
    const char* reason;
} kEndings[] = {
    {"cancelled", "the person cancelled the sign-in"},
    {"closed", "the sign-in page was closed"},
    {"expired", "nobody answered on the sign-in page in time"},
    {"unknown", "the account platform no longer knows the sign-in"},
};

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

// The reply, when it has that text, and outcome kOk; else why it does not.
Json::Value PlatformClient::PostSignIn(const SignInArguments& arguments, bool interactive, const char* member,
                                       SignInReply& outcome) {
    Json::Value body;
    body["applicationId"] = arguments.applicationId;
    body["scopes"] = arguments.scopes;
    body["location"] = arguments.location;
    if (interactive) {
        body["interactive"] = true;
    }
    httplib::Request request;
    request.method = "POST";
    request.path = m_http->url.path + kSignInPath;
    request.set_header("Content-Type", "application/json");
    request.body = CompactText(body);

    const Reply reply = Send(m_http->client, std::move(request));
    Json::Value root = ParseObject(reply.text);
    outcome = OutcomeOf(reply, m_http->url.text);
    if (reply.status == 200 && !TextMember(root, member).empty()) {
        outcome = {kOk, "", ""};
    } else if (const std::string error = TextMember(root, "error");
               (reply.status == 400 || reply.status == kTooManyWait) && !error.empty()) {
        outcome = {kSignInRefused, "", error};
    }
    return root;
}

SignInReply PlatformClient::SignIn(const SignInArguments& arguments) {
    SignInReply outcome;
    const Json::Value root = PostSignIn(arguments, false, "code", outcome);
    outcome.authorizationCode = outcome.code == kOk ? TextMember(root, "code") : "";
    return outcome;
}

SignInRequest PlatformClient::OpenSignIn(const SignInArguments& arguments) {
    SignInRequest opened;
    opened.id = TextMember(PostSignIn(arguments, true, "request", opened.refusal), "request");
    opened.pageUrl = m_http->url.text + "/sign-in?request=" + opened.id;
    // It goes to the system's shell.
    const bool digitsOnly = opened.id.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (opened.refusal.code == kOk && (!digitsOnly || opened.id.size() != kRequestIdDigits)) {
        opened.refusal = {kBadAnswer, "", "the account platform's request id is not 32 hexadecimal digits"};
    }
    return opened;
}

std::optional<SignInReply> PlatformClient::AskSignIn(const std::string& id) {
    httplib::Request request;
    request.method = "GET";
    request.path = m_http->url.path + kSignInPath + "?request=" + id;
    const Reply reply = Send(m_http->client, std::move(request));
    const Json::Value root = ParseObject(reply.text);
    const std::string state = reply.status == 200 ? TextMember(root, "state") : "";
    const std::string code = TextMember(root, "code");
    if (state == "waiting") {
        return std::nullopt;
    }
    if (state == "granted" && !code.empty()) {
        return SignInReply{kOk, code, ""};
    }
    for (const auto& ending : kEndings) {
        if (state == ending.state) {
            return SignInReply{kSignInCancelled, "", ending.reason};
        }
    }
    return OutcomeOf(reply, m_http->url.text);
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
