#pragma once

#include <memory>
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
    Code code = kInternalError;  // kOk, kNoAnswer, kBadAnswer or kSignInRefused
    std::string authorizationCode;
    std::string reason;  // in words, for people; empty with kOk
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
    SessionReply CurrentSession();

private:
    struct Http;
    std::unique_ptr<Http> m_http;
};

}  // namespace accountsdk
