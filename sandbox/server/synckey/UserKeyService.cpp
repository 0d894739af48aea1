#include <algorithm>
#include <utility>

#include "checks/AuthorizedRequest.h"
#include "checks/HeaderInspection.h"
#include "checks/WireConstants.h"
#include "http/JsonText.h"
#include "synckey/Endpoints.h"

namespace sandbox {
namespace {

constexpr const char* kTokenField = "x-zv-tempKey";
constexpr const char* kUserIdFields[] = {"unionID", "userId"};

// The fields that both requests have in common. The caller has had the others inspected.
void CheckCommonFields(HeaderInspection& inspection) {
    inspection.ExpectPresent("Authorization");
    for (const auto* name : kUserIdFields) {
        inspection.ExpectPresent(name);
    }
    inspection.Expect("x-zv-app-package-name", kPackageName);
    inspection.Expect("x-zv-app-id", kApplicationId);
    inspection.ExpectNoBody();
    inspection.RefuseOtherFields();
}

Account CallerOf(const PlatformRequest& request, const PlatformState& state) {
    auto account = BearerAccount(request.head, state);
    for (const auto* name : kUserIdFields) {
        HeaderInspection(request.head).Expect(name, account.userId);
    }
    return account;
}

PlatformReply ServerKey(const PlatformRequest& request, const PlatformState& state, const KeyExchange& exchange) {
    HeaderInspection inspection(request.head);
    inspection.Expect("x-zv-tempKeyEncType", kServerKeyKind);
    CheckCommonFields(inspection);
    RequireQuery(request, "");
    CallerOf(request, state);
    const auto served = exchange.Served();
    return JsonReply(JsonObject({{"publicKey", served.publicKey}, {"version", served.version}}));
}

std::string_view DataTypeIn(std::string_view query) {
    const auto found = std::find_if(kUserKeyDataTypes.begin(), kUserKeyDataTypes.end(), [&](std::string_view dataType) {
        return query == std::string(kUserKeysQueryStart) + std::string(dataType);
    });
    if (found == kUserKeyDataTypes.end()) {
        throw Refusal(Wrong::kQuery, "the query is neither dataType=11 nor dataType=12");
    }
    return *found;
}

PlatformReply KeyList(const PlatformRequest& request, const PlatformState& state, UserKeyPlatform& userKeys) {
    HeaderInspection inspection(request.head);
    inspection.Expect("x-zv-clientTrustMode", kClientTrustMode);
    inspection.Expect("x-zv-keyEncType", kUserKeyEncryption);
    inspection.Expect("x-zv-tempKeyEncType", kTemporaryKeyAgreement);
    inspection.Expect("x-zv-keyVersion", userKeys.exchange.Served().version);
    const auto token = inspection.ExpectPresent(kTokenField);
    CheckCommonFields(inspection);
    const auto dataType = DataTypeIn(request.query);
    const auto account = CallerOf(request, state);
    const auto temporaryKey = userKeys.exchange.Open(token);
    return JsonReply(userKeys.lists.Make(dataType, {userKeys.keys.Of(account.userId, dataType), temporaryKey}));
}

}  // namespace

void AddUserKeyEndpoints(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys) {
    endpoints.Add("GET", kPathServerKey,
                  [&](const PlatformRequest& request) { return ServerKey(request, state, userKeys.exchange); });
    endpoints.Add("GET", kPathUserKeys,
                  [&](const PlatformRequest& request) { return KeyList(request, state, userKeys); });
}

}  // namespace sandbox
