#include "synckey/UserKeyControl.h"

#include <algorithm>
#include <string>

#include "crypto/Sha256.h"
#include "http/ControlEndpoint.h"

namespace sandbox {
namespace {

// Never the key itself.
Json::Value Description(std::string_view dataType, const UserKey& key) {
    Json::Value description(Json::objectValue);
    description["dataType"] = std::string(dataType);
    description["keyType"] = key.type;
    description["uuid"] = key.uuid;
    description["sha256"] = LowerHex(Sha256(key.bytes));
    return description;
}

Json::Value ExchangesOf(const ExchangeCounts& counts) {
    Json::Value exchanges(Json::objectValue);
    exchanges["tokens"] = static_cast<Json::UInt64>(counts.tokens);
    exchanges["distinctNonces"] = static_cast<Json::UInt64>(counts.distinctNonces);
    exchanges["distinctTemporaryKeys"] = static_cast<Json::UInt64>(counts.distinctTemporaryKeys);
    exchanges["leadingZeroSecrets"] = static_cast<Json::UInt64>(counts.leadingZeroSecrets);
    return exchanges;
}

PlatformReply DescribeKeys(const PlatformState& state, const UserKeyPlatform& userKeys) {
    const auto account = state.CurrentAccount();
    Json::Value reply(Json::objectValue);
    for (const auto dataType : kUserKeyDataTypes) {
        const auto& pair = userKeys.keys.Of(account.userId, dataType);
        reply["keys"].append(Description(dataType, pair.type1));
        reply["keys"].append(Description(dataType, pair.type3));
    }
    reply["exchanges"] = ExchangesOf(userKeys.exchange.Counts());
    return JsonReply(reply);
}

bool IsChosen(const Json::Value& choice, std::string_view dataType) {
    return choice.isNull() || (choice.isString() && choice.asString() == dataType);
}

// Of both data types, or of the one that the member "dataType" names.
PlatformReply ChooseVariant(const Json::Value& body, KeyListChoice& lists) {
    const auto& name = body["variant"];
    const auto* variant = name.isString() ? FindKeyListVariant(name.asString()) : nullptr;
    if (variant == nullptr) {
        return ErrorReply(400, "variant is none of " + KeyListVariantNames());
    }
    const auto& choice = body["dataType"];
    if (std::none_of(kUserKeyDataTypes.begin(), kUserKeyDataTypes.end(),
                     [&](std::string_view dataType) { return IsChosen(choice, dataType); })) {
        return ErrorReply(400, "dataType is neither \"11\" nor \"12\"");
    }
    for (const auto dataType : kUserKeyDataTypes) {
        if (IsChosen(choice, dataType)) {
            lists.Choose(dataType, *variant);
        }
    }
    return JsonReply(Json::Value(Json::objectValue));
}

PlatformReply ReplaceServerKey(const Json::Value& body, KeyExchange& exchange) {
    for (const auto* member : {"publicKey", "version"}) {
        if (!body[member].isNull() && !body[member].isString()) {
            return ErrorReply(400, std::string(member) + " is not a text");
        }
    }
    exchange.Replace({body["publicKey"].asString(), body["version"].asString()});
    const auto served = exchange.Served();
    Json::Value reply(Json::objectValue);
    reply["publicKey"] = served.publicKey;
    reply["version"] = served.version;
    return JsonReply(reply);
}

}  // namespace

void AddUserKeyControl(EndpointTable& endpoints, const PlatformState& state, UserKeyPlatform& userKeys) {
    constexpr const char* kPathKeys = "/sandbox/user-keys";
    endpoints.Add("GET", kPathKeys,
                  [&state, &userKeys](const PlatformRequest&) { return DescribeKeys(state, userKeys); });
    endpoints.Add("POST", kPathKeys,
                  WithObject([&userKeys](const Json::Value& body) { return ChooseVariant(body, userKeys.lists); }));
    endpoints.Add("POST", "/sandbox/server-key", WithObject([&userKeys](const Json::Value& body) {
                      return ReplaceServerKey(body, userKeys.exchange);
                  }));
}

}  // namespace sandbox
