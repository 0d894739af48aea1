#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sandbox {

enum class SignInState {
    kWaiting,    // for the person
    kGranted,    // the person signed in; the client has not fetched the code yet
    kCancelled,  // by the person
    kClosed,     // the page was closed without an answer
    kExpired,    // nobody answered in time
    kUnknown,    // never heard of, or fetched by the client, or the client has stopped asking
};

struct SignInAnswer {
    SignInState state = SignInState::kUnknown;
    std::string code;  // the authorization code, with kGranted
    std::string userId;
};

// Sign-ins that wait for a person on the sign-in page. The client opens one and then asks, several times a second, how
// it stands; the page watches it and answers it. All operations may be called from any thread.
class SignInRequests {
public:
    // The id of a new request, 32 hexadecimal digits; empty when too many wait already.
    std::string Open();
    // How it stands, as the client hears it. Anything but kWaiting ends the request.
    SignInAnswer Ask(const std::string& id);

    // Whether it still waited; the answer is for the client's next question.
    bool Grant(const std::string& id, std::string code, std::string userId);
    bool Cancel(const std::string& id);
    // For people.
    SignInState Look(const std::string& id) const;
    std::vector<std::string> Waiting() const;
    // The page is there as long as the returned object lives. Three seconds after the last such object the page counts
    // as closed: a page that is loaded anew comes back sooner.
    std::shared_ptr<void> Watch(const std::string& id);

    void Clear();

private:
    using Clock = std::chrono::steady_clock;
    struct Request {
        Clock::time_point opened;
        Clock::time_point asked;  // by the client, the last time
        Clock::time_point left;   // by the page, the last time
        int pages = 0;
        bool seen = false;  // a page was there
        SignInAnswer answer;
    };
    using Requests = std::map<std::string, Request>;

    // The following expect the lock to be held.
    Request* FindWaiting(const std::string& id);
    static SignInState StateOf(const Request& request);
    void Leave(const std::string& id);

    mutable std::mutex m_lock;
    Requests m_requests;  // by id; guarded by m_lock
};

}  // namespace sandbox
