#pragma once

#include <json/value.h>

#include <memory>
#include <optional>
#include <string>

#include "AccountSdkContract.h"
#include "PlatformUrl.h"

namespace accountsdk {

// The three texts of "SignIn".
struct SignInArguments {
    std::string applicationId;
    std::string scopes;
    std::string location;
};

// Outcome of a sign-in at the platform.
struct SignInReply {
    Code code = kInternalError;  // kOk, kNoAnswer, kBadAnswer, kSignInRefused, kSignInCancelled or kBrowserNotStarted
    std::string authorizationCode;
    std::string reason;  // in words, for people; empty with kOk
};

// A sign-in that a person completes on the platform's page.
struct SignInRequest {
    SignInReply refusal;  // kOk when there is a request
    std::string id;       // 32 hexadecimal digits
    std::string pageUrl;  // where the person goes
};

// Who is signed in at the platform.
struct SessionReply {
    Code code = kInternalError;  // kOk, kNoAnswer, kBadAnswer or kNotSignedIn
    std::string userId;          // UTF-8
};

// Talks to the account platform over plain HTTP: connect in 5 s, no silence of more than 10 s, replies up to 64 KiB.
// One thread at a time.
class PlatformClient {
public:
    explicit PlatformClient(const PlatformUrl& platform);
    ~PlatformClient();
    PlatformClient(const PlatformClient&) = delete;
    PlatformClient& operator=(const PlatformClient&) = delete;

    SignInReply SignIn(const SignInArguments& arguments);
    SignInRequest OpenSignIn(const SignInArguments& arguments);
    // How the request stands; nothing while the person has not answered.
    std::optional<SignInReply> AskSignIn(const std::string& id);
    SessionReply CurrentSession();

private:
    Json::Value PostSignIn(const SignInArguments& arguments, bool interactive, const char* member,
                           SignInReply& outcome);

    struct Http;
    std::unique_ptr<Http> m_http;
};

}  // namespace accountsdk
