#include "../SignInContract.h"
#include "Endpoints.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr const char* kPathFaults = "/sandbox/faults";

PlatformReply EmptyReply() {
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply SessionReply(const Session& session) {
    return JsonReply(
        JsonObject({{"signedIn", session.signedIn}, {"userId", session.userId}, {"displayName", session.displayName}}));
}

void Expect(const Json::Value& body, const char* member, std::string_view value) {
    if (body[member] != std::string(value)) {
        throw Refusal(Wrong::kBody, std::string(member) + " is not \"" + std::string(value) + "\"");
    }
}

// With "interactive" the reply names a request, which a person answers at /sign-in?request=ID.
PlatformReply OpenSignIn(SignInRequests& signIns) {
    constexpr int kServiceUnavailable = 503;
    const auto id = signIns.Open();
    return id.empty() ? ErrorReply(kServiceUnavailable, "too many sign-ins wait for a person")
                      : JsonReply(JsonObject({{"request", id}}));
}

const char* NameOf(SignInState state) {
    switch (state) {
        case SignInState::kWaiting:
            return "waiting";
        case SignInState::kGranted:
            return "granted";
        case SignInState::kCancelled:
            return "cancelled";
        case SignInState::kClosed:
            return "closed";
        case SignInState::kExpired:
            return "expired";
        default:
            return "unknown";
    }
}

// {"state": ...}, and with "granted" what a sign-in without a person is answered at once.
PlatformReply AskSignIn(const PlatformRequest& request, SignInRequests& signIns) {
    const auto id = request.parameters.find("request");
    const auto answer = signIns.Ask(id == request.parameters.end() ? std::string() : id->second);
    auto reply = JsonObject({{"state", NameOf(answer.state)}});
    if (answer.state == SignInState::kGranted) {
        reply["code"] = answer.code;
        reply["userId"] = answer.userId;
    }
    return JsonReply(reply);
}

PlatformReply SignIn(const Json::Value& body, PlatformState& state, SignInRequests& signIns) {
    Expect(body, "applicationId", kApplicationId);
    Expect(body, "scopes", kSignInScopes);
    Expect(body, "location", kSignInLocation);
    if (body["interactive"] == true) {
        return OpenSignIn(signIns);
    }
    const auto grant = state.SignIn();
    return JsonReply(JsonObject({{"code", grant.code}, {"userId", grant.userId}}));
}

PlatformReply SelectAccount(const Json::Value& body, PlatformState& state) {
    if (!body["userId"].isString() || !state.SelectAccount(body["userId"].asString())) {
        throw Refusal(Wrong::kBody, "userId is not that of an account");
    }
    return SessionReply(state.CurrentSession());
}

PlatformReply AdvanceClock(const Json::Value& body, PlatformState& state) {
    const auto& seconds = body["advanceSeconds"];
    if (!seconds.isUInt() || !state.AdvanceClock(std::chrono::seconds(seconds.asUInt()))) {
        throw Refusal(Wrong::kBody, "advanceSeconds is not a whole number, or the clock would be more than " +
                                        std::to_string(std::chrono::seconds(kLongestAdvance).count()) +
                                        " s ahead in all");
    }
    return EmptyReply();
}

PlatformReply Revoke(const Json::Value& body, PlatformState& state) {
    const auto& kind = body["kind"];
    if (kind != "access" && kind != "refresh") {
        throw Refusal(Wrong::kBody, "kind is neither \"access\" nor \"refresh\"");
    }
    const auto revoked = state.Revoke(kind == "access" ? TokenKind::kAccess : TokenKind::kRefresh);
    return JsonReply(JsonObject({{"revoked", static_cast<Json::UInt64>(revoked)}}));
}

PlatformReply PutFault(const Json::Value& body, const EndpointTable& endpoints, FaultTable& faults) {
    auto fault = ReadFault(body);
    // A fault of this very endpoint could not be taken back.
    if (!endpoints.Knows(fault.endpoint) || fault.endpoint == kPathFaults) {
        throw Refusal(Wrong::kBody, "endpoint is not one that can have faults: " + fault.endpoint);
    }
    faults.Put(std::move(fault));
    return EmptyReply();
}

// That of one endpoint, or all.
PlatformReply RemoveFaults(const PlatformRequest& request, FaultTable& faults) {
    const auto endpoint = request.parameters.find("endpoint");
    if (endpoint == request.parameters.end()) {
        faults.Clear();
    } else {
        faults.Remove(endpoint->second);
    }
    return EmptyReply();
}

Json::Value CountsOf(const std::map<std::string, std::uint64_t>& counts) {
    Json::Value object(Json::objectValue);
    for (const auto& [name, count] : counts) {
        object[name] = static_cast<Json::UInt64>(count);
    }
    return object;
}

PlatformReply Statistics(const TrafficLog& traffic) {
    const auto totals = traffic.Totals();
    return JsonReply(
        JsonObject({{"connections", CountsOf(totals.connections)}, {"requests", CountsOf(totals.requests)}}));
}

PlatformReply LastRequest(const PlatformRequest& request, const TrafficLog& traffic) {
    const auto endpoint = request.parameters.find("endpoint");
    if (endpoint == request.parameters.end()) {
        throw Refusal(Wrong::kQuery, "endpoint is missing in the query");
    }
    const auto recorded = traffic.LastRequest(endpoint->second);
    return recorded ? JsonReply(JsonObject({{"head", recorded->head}, {"body", recorded->body}}))
                    : ErrorReply(404, "no request came for " + endpoint->second);
}

}  // namespace

void AddSandboxEndpoints(EndpointTable& endpoints, PlatformState& state, SignInRequests& signIns, FaultTable& faults,
                         const TrafficLog& traffic) {
    endpoints.Add("POST", "/sandbox/sign-in",
                  WithObject([&](const Json::Value& body) { return SignIn(body, state, signIns); }));
    endpoints.Add("GET", "/sandbox/sign-in",
                  [&](const PlatformRequest& request) { return AskSignIn(request, signIns); });
    endpoints.Add("POST", "/sandbox/sign-out", [&](const PlatformRequest&) {
        state.SignOut();
        return SessionReply(state.CurrentSession());
    });
    endpoints.Add("GET", "/sandbox/session",
                  [&](const PlatformRequest&) { return SessionReply(state.CurrentSession()); });
    endpoints.Add("POST", "/sandbox/account",
                  WithObject([&](const Json::Value& body) { return SelectAccount(body, state); }));
    endpoints.Add("POST", "/sandbox/clock",
                  WithObject([&](const Json::Value& body) { return AdvanceClock(body, state); }));
    endpoints.Add("POST", "/sandbox/revoke", WithObject([&](const Json::Value& body) { return Revoke(body, state); }));
    endpoints.Add("POST", kPathFaults,
                  WithObject([&](const Json::Value& body) { return PutFault(body, endpoints, faults); }));
    endpoints.Add("DELETE", kPathFaults, [&](const PlatformRequest& request) { return RemoveFaults(request, faults); });
    endpoints.Add("GET", "/sandbox/statistics", [&](const PlatformRequest&) { return Statistics(traffic); });
    endpoints.Add("GET", "/sandbox/last-request",
                  [&](const PlatformRequest& request) { return LastRequest(request, traffic); });
}

}  // namespace sandbox
