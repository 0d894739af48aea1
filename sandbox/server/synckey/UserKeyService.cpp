#include "synckey/UserKeyService.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "checks/BearerRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr const char* kTokenField = "x-zv-tempKey";

// The account that a request speaks for, or the refusal of the request.
struct Caller {
    std::optional<Account> account;
    PlatformReply refusal;
};

// The fields that both requests have in common; inspection has seen the others.
std::string RequestFault(HeaderInspection& inspection, const std::string& queryFault) {
    for (const auto* name : {"Authorization", "unionID", "userId"}) {
        inspection.ExpectPresent(name);
    }
    inspection.Expect("x-zv-app-package-name", kPackageName);
    inspection.Expect("x-zv-app-id", kApplicationId);
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
    return inspection.Reason().empty() ? queryFault : inspection.Reason();
}

Caller IdentifyCaller(const RequestHead& head, const PlatformState& state, HeaderInspection& inspection,
                      const std::string& queryFault) {
    if (const auto fault = RequestFault(inspection, queryFault); !fault.empty()) {
        return {std::nullopt, ErrorReply(400, fault)};
    }
    auto check = CheckBearer(head, state);
    if (!check.account) {
        return {std::nullopt, ErrorReply(401, check.refusal)};
    }
    for (const auto* name : {"unionID", "userId"}) {
        inspection.Expect(name, check.account->userId);
    }
    if (!inspection.Reason().empty()) {
        return {std::nullopt, ErrorReply(400, inspection.Reason())};
    }
    return {std::move(check.account), {}};
}

PlatformReply ServerKey(const PlatformRequest& request, const PlatformState& state, const KeyExchange& exchange) {
    HeaderInspection inspection(request.head);
    inspection.Expect("x-zv-tempKeyEncType", kServerKeyKind);
    const auto caller =
        IdentifyCaller(request.head, state, inspection, request.query.empty() ? "" : "a query does not belong here");
    if (!caller.account) {
        return caller.refusal;
    }
    const auto served = exchange.Served();
    Json::Value reply(Json::objectValue);
    reply["publicKey"] = served.publicKey;
    reply["version"] = served.version;
    return {200, JsonLine(reply), {}};
}

// Empty when the query is not that of a key list.
std::string_view DataTypeOf(std::string_view query) {
    const auto found = std::find_if(kUserKeyDataTypes.begin(), kUserKeyDataTypes.end(), [&](std::string_view dataType) {
        return query == std::string(kUserKeysQueryStart) + std::string(dataType);
    });
    return found != kUserKeyDataTypes.end() ? *found : std::string_view();
}

PlatformReply KeyList(const PlatformRequest& request, const PlatformState& state, UserKeyPlatform& userKeys) {
    HeaderInspection inspection(request.head);
    inspection.Expect("x-zv-clientTrustMode", kClientTrustMode);
    inspection.Expect("x-zv-keyEncType", kUserKeyEncryption);
    inspection.Expect("x-zv-tempKeyEncType", kTemporaryKeyAgreement);
    inspection.Expect("x-zv-keyVersion", userKeys.exchange.Served().version);
    inspection.ExpectPresent(kTokenField);
    const auto dataType = DataTypeOf(request.query);
    const auto caller = IdentifyCaller(request.head, state, inspection,
                                       dataType.empty() ? "the query is neither dataType=11 nor dataType=12" : "");
    if (!caller.account) {
        return caller.refusal;
    }
    const auto opened = userKeys.exchange.Open(request.head.OnlyValue(kTokenField));
    if (!opened.fault.empty()) {
        return ErrorReply(400, std::string(kTokenField) + ": " + opened.fault);
    }
    const KeyListOrder order{userKeys.keys.Of(caller.account->userId, dataType), opened.temporaryKey};
    return {200, JsonLine(userKeys.lists.Make(dataType, order)), {}};
}

}  // namespace

void AddUserKeyEndpoints(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys) {
    endpoints.Add("GET", kPathServerKey, [&state, &userKeys](const PlatformRequest& request) {
        return ServerKey(request, state, userKeys.exchange);
    });
    endpoints.Add("GET", kPathUserKeys,
                  [&state, &userKeys](const PlatformRequest& request) { return KeyList(request, state, userKeys); });
}

}  // namespace sandbox
