#pragma once

#include <UserAuthTypes.h>

#include <chrono>
#include <optional>
#include <string>

namespace host {

// What the account SDK reported through the notification callback. The callback carries no context, so there is one
// mailbox a process, in which the last outcome of a sign-in waits.
struct SignInOutcome {
    bool succeeded = false;
    std::string authorizationCode;  // when it succeeded; a secret until it is used
    std::string reason;             // when it failed
    unsigned long threadId = 0;     // the thread that the callback ran on
};

// The callback to register. Any thread.
void OnAccountNotification(MessageType type, char* first, char* second);

// Empties the mailbox; before a sign-in starts.
void ForgetSignInOutcome();

// Takes the outcome out of the mailbox, waiting for it; none when the time ran out.
std::optional<SignInOutcome> WaitForSignInOutcome(std::chrono::milliseconds longest);

}  // namespace host
