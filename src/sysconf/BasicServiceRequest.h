#pragma once

#include <HttpLib.h>

#include <string>

#include "AccountStateLock.h"

namespace userauth {

// What all requests to the basic service have in common: a POST with the suite's three-value header set, on the
// caller's thread. Its reply text may be as long as the HTTP library allows.

struct BasicServiceRequest {
    // Copies the user id and the access token out of the account state, each in a short exclusive hold of its own.
    BasicServiceRequest(AccountStateLock& lock, const std::wstring& currentUserId, const std::wstring& currentToken);

    std::wstring url;
    std::wstring body;
    std::wstring userId;
    std::wstring accessToken;
    BasicHttpLibStrategy::HeaderMap extraHeaders;  // joined to the standard set; a name that is there keeps its value
    const char* logHook = nullptr;                 // function tags of the HTTP library's messages (RequestLog.h)
    const char* errorLogHook = nullptr;            // null: failures are not logged
};

// Completes a request for the account's system configuration or for its activation: both name the country and say that
// the activation was asked for by hand.
void AskForSysConf(BasicServiceRequest& request, const std::wstring& countryCode);

// URL of an operation: the base URL, the service's path and the operation's name.
std::wstring BasicServiceUrl(const wchar_t* operation);

// Returns the HTTP code, or 0 with an empty reply when a suite library threw.
int SendBasicServiceRequest(const BasicServiceRequest& request, std::string& reply);

// 201 is a success of this service, unlike everywhere else; getLastOperationRecord takes 200 only.
bool IsBasicServiceSuccess(int httpCode);

}  // namespace userauth
