#include "steps/SignInOutcome.h"

#include <windows.h>

#include <condition_variable>
#include <mutex>
#include <utility>

namespace host {
namespace {

struct Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::optional<SignInOutcome> outcome;
};

Mailbox& TheMailbox() {
    // Never destroyed: the SDK may call back until the process is gone.
    static Mailbox* const mailbox = new Mailbox;
    return *mailbox;
}

std::string Reason(const char* first, const char* second) {
    return "account SDK code " + std::string(first) + ": " + second;
}

}  // namespace

void OnAccountNotification(MessageType type, char* first, char* second) {
    SignInOutcome outcome;
    outcome.threadId = GetCurrentThreadId();
    if (type == MessageType::kSignInSucceeded) {
        outcome.succeeded = true;
        outcome.authorizationCode = first;
    } else if (type == MessageType::kSignInFailed) {
        outcome.reason = Reason(first, second);
    } else {
        return;  // no outcome of a sign-in
    }
    Mailbox& mailbox = TheMailbox();
    const std::lock_guard<std::mutex> guard(mailbox.mutex);
    mailbox.outcome = std::move(outcome);
    mailbox.arrived.notify_all();
}

void ForgetSignInOutcome() {
    Mailbox& mailbox = TheMailbox();
    const std::lock_guard<std::mutex> guard(mailbox.mutex);
    mailbox.outcome.reset();
}

std::optional<SignInOutcome> WaitForSignInOutcome(std::chrono::milliseconds longest) {
    Mailbox& mailbox = TheMailbox();
    std::unique_lock<std::mutex> lock(mailbox.mutex);
    mailbox.arrived.wait_for(lock, longest, [&mailbox] { return mailbox.outcome.has_value(); });
    return std::exchange(mailbox.outcome, std::nullopt);
}

}  // namespace host
