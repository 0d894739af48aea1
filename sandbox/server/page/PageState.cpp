#include "page/PageState.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "page/Masking.h"

namespace sandbox {
namespace {

// What people call the platform's operations.
struct Operation {
    std::string_view path;
    const char* name;
};
constexpr Operation kOperations[] = {
    {"/sandbox/sign-in", "Sign-in"},
    {kPathCodeExchange, "Code exchange"},
    {kPathRefresh, "Token refresh"},
    {kPathApplicationToken, "Application token"},
    {kPathRegistration, "Registration place"},
    {kPathGateway, "User id from gateway"},
    {kPathSync, "User id from sync server"},
    {kPathUserInformation, "User profile"},
    {kPathServerKey, "Server key"},
    {kPathUserKeys, "User keys"},
    {kPathRouting, "Routing"},
    {kPathConfigurationFetch, "Configuration"},
    {kPathConfigurationRefresh, "Account activation"},
    {kPathOperationRecord, "Operation record"},
    {kPathUserRegister, "Client-log switch"},
    {kPathLoginDevices, "Login devices"},
    {kPathContactsExport, "Contacts export"},
};

std::string OperationAt(std::string_view path) {
    const auto found = std::find_if(std::begin(kOperations), std::end(kOperations),
                                    [path](const Operation& operation) { return operation.path == path; });
    const bool photo = path.substr(0, kPathPhotos.size()) == kPathPhotos;
    return found != std::end(kOperations) ? found->name : photo ? "Photo" : "Unknown path";
}

// In a field, or in the query of the operations that have no such field.
std::string TraceIdOf(const std::string& requestHead) {
    constexpr std::string_view kParameter = "traceId=";
    auto traceId = RequestHead(requestHead).OnlyValue("x-zv-trace-id");
    const auto line = requestHead.substr(0, requestHead.find('\n'));
    const auto start = line.find(kParameter);
    if (!traceId.empty() || start == std::string::npos) {
        return traceId;
    }
    const auto value = line.substr(start + kParameter.size());
    return value.substr(0, value.find_first_of("& "));
}

Json::Value OperationList() {
    Json::Value list(Json::arrayValue);
    for (const auto& operation : kOperations) {
        list.append(JsonObject({{"path", std::string(operation.path)}, {"name", operation.name}}));
    }
    return list;
}

Json::Value FaultList(const FaultTable& faults) {
    Json::Value list(Json::arrayValue);
    for (const auto& fault : faults.All()) {
        auto order = fault.order;
        order["operation"] = OperationAt(fault.endpoint);
        if (fault.times) {
            order["times"] = *fault.times;
        }
        list.append(order);
    }
    return list;
}

Json::Value WaitingSignIns(const SignInRequests& signIns) {
    Json::Value list(Json::arrayValue);
    for (const auto& id : signIns.Waiting()) {
        list.append(id);
    }
    return list;
}

}  // namespace

Json::Value AccountList(const PlatformState& state) {
    Json::Value list(Json::arrayValue);
    for (const auto& account : state.Accounts()) {
        list.append(JsonObject(
            {{"userId", account.userId}, {"displayName", account.displayName}, {"countryCode", account.countryCode}}));
    }
    return list;
}

Json::Value PageState(const PageSources& sources) {
    const auto overview = sources.state.Overview();
    const auto settings = sources.settings.Of(overview.currentUserId);
    return JsonObject({{"accounts", AccountList(sources.state)},
                       {"current", overview.currentUserId},
                       {"signedIn", overview.session.signedIn},
                       {"clockAhead", static_cast<Json::Int64>(overview.clockAhead.count())},
                       {"accessTokens", static_cast<Json::UInt64>(overview.accessTokens)},
                       {"refreshTokens", static_cast<Json::UInt64>(overview.refreshTokens)},
                       {"available", settings.available},
                       {"userStatus", settings.userStatus},
                       {"modules", settings.modules},
                       {"operations", OperationList()},
                       {"faults", FaultList(sources.faults)},
                       {"signIns", WaitingSignIns(sources.signIns)}});
}

Json::Value SummaryOf(const ShownExchange& exchange) {
    return JsonObject({{"number", static_cast<Json::UInt64>(exchange.number)},
                       {"time", static_cast<Json::Int64>(exchange.time)},
                       {"operation", OperationAt(exchange.path)},
                       {"method", exchange.method},
                       {"path", exchange.path},
                       {"traceId", TraceIdOf(exchange.requestHead)},
                       {"status", exchange.status},
                       {"refusal", exchange.refusal},
                       {"fault", exchange.fault}});
}

Json::Value DetailsOf(const ShownExchange& exchange) {
    return JsonObject({{"requestHead", MaskedHead(exchange.requestHead)},
                       {"requestBody", MaskedBody(exchange.requestBody)},
                       {"replyHead", MaskedHead(exchange.replyHead)},
                       {"replyBody", MaskedBody(exchange.replyBody)}});
}

}  // namespace sandbox
