#pragma once

#include <cstdint>

// What the SDK and its callers agree on. Written here a second time, on purpose: the sandbox is the independent peer
// and shares no source with the service, so that a slip on one side shows.

namespace accountsdk {

// Every code that an export returns. 0 and 11 are fixed by the callers; the others are this SDK's own.
enum Code : int {
    kOk = 0,
    kAccountChanged = 11,         // "HasAccountChanged": another user is signed in
    kConfigurationMissing = 101,  // no platform in the environment and no readable ZMSCoreConfig.json
    kConfigurationInvalid = 102,  // the file is no JSON object, or "client_id" or the platform's URL is malformed
    kNotInitialised = 103,        // "Init" has not succeeded
    kArgumentMissing = 104,       // a null pointer where a text or a function is needed
    kWrongApplicationId = 105,    // differs from "client_id"
    kWrongScopes = 106,           // differs from the agreed scope list in any byte
    kWrongLocation = 107,         // differs from the agreed location text in any byte
    kNoCallback = 108,            // "SignIn" before "RegisterNotifyFunction"
    kThreadNotStarted = 109,      // the system gave no thread for the sign-in
    kNoAnswer = 110,              // the platform does not answer, or not in time
    kBadAnswer = 111,             // the platform answers something else than agreed
    kNotSignedIn = 112,           // nobody is signed in at the platform
    kLogoutEntryInvalid = 113,    // not a JSON object with the texts "name" and "description"
    kSignInRefused = 114,         // the platform refuses the sign-in; only in the callback
    kUninitTimedOut = 115,        // a sign-in still runs; it will not call back any more
    kSignInCancelled = 116,       // the person cancelled, closed the page or let the time pass; only in the callback
    kBrowserNotStarted = 117,     // the system opens no sign-in page; only in the callback
    kInternalError = 199,         // out of memory, or anything that has no code of its own
};

// First argument of the callback, and what its two texts hold.
enum class MessageType : std::int32_t {
    kSignInSucceeded = 1,  // single-use authorization code; empty
    kSignInFailed = 2,     // a Code in decimal; the reason in words
    // Reserved: this SDK does not watch the platform, so it sends neither.
    kSignedOut = 3,       // empty; empty
    kAccountChanged = 4,  // user id that is signed in now; empty
};

// Called on the SDK's threads. Texts are UTF-8, never null, valid during the call.
using NotifyCallback = void (*)(MessageType type, char* first, char* second);

}  // namespace accountsdk
