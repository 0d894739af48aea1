#include <memory>
#include <utility>

#include "http/JsonText.h"
#include "http/OrderReader.h"
#include "page/Endpoints.h"
#include "page/EventStream.h"
#include "page/PageState.h"

namespace sandbox {
namespace {

constexpr int kConflict = 409;

// The stream is also what tells that the page is open.
PlatformReply SignInEvents(const PlatformRequest& request, const PlatformState& state, SignInRequests& signIns) {
    const auto parameter = request.parameters.find("request");
    const auto id = parameter == request.parameters.end() ? std::string() : parameter->second;
    auto page = signIns.Watch(id);
    return EventStreamReply([&state, &signIns, id, page = std::move(page), last = Json::Value()]() mutable {
        auto news = JsonObject({{"waiting", signIns.Look(id) == SignInState::kWaiting},
                                {"accounts", AccountList(state)},
                                {"current", state.CurrentAccount().userId}});
        if (news == last) {
            return std::string();
        }
        last = std::move(news);
        return EventText("sign-in", last);
    });
}

// {"request": ID} with "userId", the account that signs in, or without, which cancels.
PlatformReply AnswerSignIn(const Json::Value& body, PlatformState& state, SignInRequests& signIns) {
    OrderReader order(body);
    const auto id = order.Text("request").value_or("");
    const auto userId = order.Text("userId");
    order.RefuseOthers();
    bool answered = false;
    if (!userId) {
        answered = signIns.Cancel(id);
    } else if (signIns.Look(id) == SignInState::kWaiting) {
        auto grant = state.SignIn(*userId);
        if (!grant) {
            throw Refusal(Wrong::kBody, "userId is not that of an account");
        }
        answered = signIns.Grant(id, std::move(grant->code), std::move(grant->userId));
    }
    return answered ? JsonReply(Json::Value(Json::objectValue))
                    : ErrorReply(kConflict, "no program waits for this sign-in any more");
}

}  // namespace

void AddSignInPageEndpoints(EndpointTable& endpoints, PlatformState& state, SignInRequests& signIns) {
    endpoints.Add("GET", "/sandbox/sign-in-events",
                  [&](const PlatformRequest& request) { return SignInEvents(request, state, signIns); });
    endpoints.Add("POST", "/sandbox/sign-in-answer",
                  WithObject([&](const Json::Value& body) { return AnswerSignIn(body, state, signIns); }));
}

}  // namespace sandbox
