#include <algorithm>

#include "crypto/Sha256.h"
#include "http/JsonText.h"
#include "http/OrderReader.h"
#include "synckey/Endpoints.h"

namespace sandbox {
namespace {

// Never the key itself.
Json::Value Description(std::string_view dataType, const UserKey& key) {
    return JsonObject({{"dataType", std::string(dataType)},
                       {"keyType", key.type},
                       {"uuid", key.uuid},
                       {"sha256", LowerHex(Sha256(key.bytes))}});
}

PlatformReply DescribeKeys(const PlatformState& state, const UserKeyPlatform& userKeys) {
    const auto account = state.CurrentAccount();
    Json::Value keys(Json::arrayValue);
    for (const auto dataType : kUserKeyDataTypes) {
        const auto& pair = userKeys.keys.Of(account.userId, dataType);
        keys.append(Description(dataType, pair.type1));
        keys.append(Description(dataType, pair.type3));
    }
    const auto counts = userKeys.exchange.Counts();
    return JsonReply(JsonObject(
        {{"keys", keys},
         {"exchanges", JsonObject({{"tokens", static_cast<Json::UInt64>(counts.tokens)},
                                   {"distinctNonces", static_cast<Json::UInt64>(counts.distinctNonces)},
                                   {"distinctTemporaryKeys", static_cast<Json::UInt64>(counts.distinctTemporaryKeys)},
                                   {"leadingZeroSecrets", static_cast<Json::UInt64>(counts.leadingZeroSecrets)}})}}));
}

// Chooses it for both data types, or for the one that the member "dataType" names.
PlatformReply ChooseVariant(const Json::Value& body, KeyListChoice& lists) {
    OrderReader order(body);
    const auto* variant = FindKeyListVariant(order.Text("variant").value_or(""));
    const auto chosen = order.Text("dataType");
    order.RefuseOthers();
    if (variant == nullptr) {
        throw Refusal(Wrong::kBody, "variant is none of " + KeyListVariantNames());
    }
    if (chosen && std::find(kUserKeyDataTypes.begin(), kUserKeyDataTypes.end(), *chosen) == kUserKeyDataTypes.end()) {
        throw Refusal(Wrong::kBody, "dataType is neither \"11\" nor \"12\"");
    }
    for (const auto dataType : kUserKeyDataTypes) {
        if (!chosen || dataType == *chosen) {
            lists.Choose(dataType, *variant);
        }
    }
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply ReplaceServerKey(const Json::Value& body, KeyExchange& exchange) {
    OrderReader order(body);
    ServedKey replacement{order.Text("publicKey").value_or(""), order.Text("version").value_or("")};
    order.RefuseOthers();
    exchange.Replace(std::move(replacement));
    const auto served = exchange.Served();
    return JsonReply(JsonObject({{"publicKey", served.publicKey}, {"version", served.version}}));
}

}  // namespace

void AddUserKeyControl(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys) {
    constexpr const char* kPathKeys = "/sandbox/user-keys";
    endpoints.Add("GET", kPathKeys, [&](const PlatformRequest&) { return DescribeKeys(state, userKeys); });
    endpoints.Add("POST", kPathKeys,
                  WithObject([&](const Json::Value& body) { return ChooseVariant(body, userKeys.lists); }));
    endpoints.Add("POST", "/sandbox/server-key",
                  WithObject([&](const Json::Value& body) { return ReplaceServerKey(body, userKeys.exchange); }));
}

}  // namespace sandbox
