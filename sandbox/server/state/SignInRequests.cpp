#include "state/SignInRequests.h"

#include <utility>

#include "crypto/RandomText.h"

namespace sandbox {
namespace {

constexpr std::size_t kMostRequests = 16;
constexpr std::chrono::minutes kLongestWait{5};
constexpr std::chrono::seconds kPageReturns{3};
constexpr std::chrono::seconds kClientAsks{10};  // a client that asked no later than this is still there

}  // namespace

std::string SignInRequests::Open() {
    auto id = RandomUuid();
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto now = Clock::now();
    for (auto request = m_requests.begin(); request != m_requests.end();) {
        const bool waits = StateOf(request->second) != SignInState::kUnknown;
        request = waits ? std::next(request) : m_requests.erase(request);
    }
    if (m_requests.size() >= kMostRequests) {
        return {};
    }
    Request request;
    request.opened = request.asked = now;
    request.answer.state = SignInState::kWaiting;
    m_requests.emplace(id, std::move(request));
    return id;
}

SignInAnswer SignInRequests::Ask(const std::string& id) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_requests.find(id);
    if (found == m_requests.end()) {
        return {};
    }
    found->second.asked = Clock::now();
    auto answer = found->second.answer;
    answer.state = StateOf(found->second);
    if (answer.state != SignInState::kWaiting) {
        m_requests.erase(found);
    }
    return answer;
}

bool SignInRequests::Grant(const std::string& id, std::string code, std::string userId) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto* const request = FindWaiting(id);
    if (request != nullptr) {
        request->answer = {SignInState::kGranted, std::move(code), std::move(userId)};
    }
    return request != nullptr;
}

bool SignInRequests::Cancel(const std::string& id) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto* const request = FindWaiting(id);
    if (request != nullptr) {
        request->answer.state = SignInState::kCancelled;
    }
    return request != nullptr;
}

SignInState SignInRequests::Look(const std::string& id) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_requests.find(id);
    return found == m_requests.end() ? SignInState::kUnknown : StateOf(found->second);
}

std::vector<std::string> SignInRequests::Waiting() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    std::vector<std::string> ids;
    for (const auto& [id, request] : m_requests) {
        if (StateOf(request) == SignInState::kWaiting) {
            ids.push_back(id);
        }
    }
    return ids;
}

std::shared_ptr<void> SignInRequests::Watch(const std::string& id) {
    const std::lock_guard<std::mutex> guard(m_lock);
    auto* const request = FindWaiting(id);
    if (request == nullptr) {
        return nullptr;
    }
    ++request->pages;
    request->seen = true;
    return {request, [this, id](void*) {
                const std::lock_guard<std::mutex> hold(m_lock);
                Leave(id);
            }};
}

void SignInRequests::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_requests.clear();
}

SignInRequests::Request* SignInRequests::FindWaiting(const std::string& id) {
    const auto found = m_requests.find(id);
    return found != m_requests.end() && StateOf(found->second) == SignInState::kWaiting ? &found->second : nullptr;
}

SignInState SignInRequests::StateOf(const Request& request) {
    const auto now = Clock::now();
    if (now - request.asked > kClientAsks) {
        return SignInState::kUnknown;
    }
    if (request.answer.state != SignInState::kWaiting) {
        return request.answer.state;
    }
    if (request.seen && request.pages == 0 && now - request.left > kPageReturns) {
        return SignInState::kClosed;
    }
    return now - request.opened > kLongestWait ? SignInState::kExpired : SignInState::kWaiting;
}

void SignInRequests::Leave(const std::string& id) {
    const auto found = m_requests.find(id);
    if (found != m_requests.end()) {
        --found->second.pages;
        found->second.left = Clock::now();
    }
}

}  // namespace sandbox
