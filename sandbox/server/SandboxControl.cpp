#include "SandboxControl.h"

#include "../SignInContract.h"
#include "checks/WireConstants.h"
#include "http/ControlEndpoint.h"

namespace sandbox {
namespace {

constexpr const char* kPathFaults = "/sandbox/faults";

PlatformReply SessionReply(const Session& session) {
    Json::Value reply(Json::objectValue);
    reply["signedIn"] = session.signedIn;
    reply["userId"] = session.userId;
    reply["displayName"] = session.displayName;
    return JsonReply(reply);
}

PlatformReply SignIn(const Json::Value& body, PlatformState& state) {
    struct Expected {
        const char* member;
        std::string_view value;
    };
    for (const auto& [member, value] : {Expected{"applicationId", kApplicationId}, Expected{"scopes", kSignInScopes},
                                        Expected{"location", kSignInLocation}}) {
        if (!body[member].isString() || body[member].asString() != value) {
            return ErrorReply(400, std::string(member) + " is not \"" + std::string(value) + "\"");
        }
    }
    const auto grant = state.SignIn();
    Json::Value reply(Json::objectValue);
    reply["code"] = grant.code;
    reply["userId"] = grant.userId;
    return JsonReply(reply);
}

PlatformReply SelectAccount(const Json::Value& body, PlatformState& state) {
    if (!body["userId"].isString() || !state.SelectAccount(body["userId"].asString())) {
        return ErrorReply(400, "userId is not that of an account");
    }
    return SessionReply(state.CurrentSession());
}

PlatformReply AdvanceClock(const Json::Value& body, PlatformState& state) {
    const auto& seconds = body["advanceSeconds"];
    if (!seconds.isUInt() || !state.AdvanceClock(std::chrono::seconds(seconds.asUInt()))) {
        return ErrorReply(400, "advanceSeconds is not a whole number, or the clock would be more than " +
                                   std::to_string(std::chrono::seconds(kLongestAdvance).count()) + " s ahead in all");
    }
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply Revoke(const Json::Value& body, PlatformState& state) {
    const auto kind = body["kind"].isString() ? body["kind"].asString() : std::string();
    if (kind != "access" && kind != "refresh") {
        return ErrorReply(400, "kind is neither \"access\" nor \"refresh\"");
    }
    const auto revoked = state.Revoke(kind == "access" ? TokenKind::kAccess : TokenKind::kRefresh);
    Json::Value reply(Json::objectValue);
    reply["revoked"] = static_cast<Json::UInt64>(revoked);
    return JsonReply(reply);
}

PlatformReply PutFault(const Json::Value& body, const EndpointTable& endpoints, FaultTable& faults) {
    auto parsed = ParseFault(body);
    if (!parsed.reason.empty()) {
        return ErrorReply(400, parsed.reason);
    }
    // A fault of this very endpoint could not be taken back.
    if (!endpoints.Knows(parsed.fault.endpoint) || parsed.fault.endpoint == kPathFaults) {
        return ErrorReply(400, "endpoint is not one that can have faults: " + parsed.fault.endpoint);
    }
    faults.Put(std::move(parsed.fault));
    return JsonReply(Json::Value(Json::objectValue));
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
    Json::Value reply(Json::objectValue);
    reply["connections"] = CountsOf(totals.connections);
    reply["requests"] = CountsOf(totals.requests);
    return JsonReply(reply);
}

PlatformReply LastRequest(const PlatformRequest& request, const TrafficLog& traffic) {
    const auto endpoint = request.parameters.find("endpoint");
    if (endpoint == request.parameters.end()) {
        return ErrorReply(400, "endpoint is missing in the query");
    }
    const auto recorded = traffic.LastRequest(endpoint->second);
    if (!recorded) {
        return ErrorReply(404, "no request came for " + endpoint->second);
    }
    Json::Value reply(Json::objectValue);
    reply["head"] = recorded->head;
    reply["body"] = recorded->body;
    return JsonReply(reply);
}

}  // namespace

void AddSandboxEndpoints(EndpointTable& endpoints, PlatformState& state, FaultTable& faults,
                         const TrafficLog& traffic) {
    endpoints.Add("POST", "/sandbox/sign-in", WithObject([&](const Json::Value& body) { return SignIn(body, state); }));
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
    endpoints.Add("DELETE", kPathFaults, [&](const PlatformRequest&) {
        faults.Clear();
        return JsonReply(Json::Value(Json::objectValue));
    });
    endpoints.Add("GET", "/sandbox/statistics", [&](const PlatformRequest&) { return Statistics(traffic); });
    endpoints.Add("GET", "/sandbox/last-request",
                  [&](const PlatformRequest& request) { return LastRequest(request, traffic); });
}

}  // namespace sandbox
