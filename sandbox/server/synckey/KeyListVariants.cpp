#include "synckey/KeyListVariants.h"

#include <algorithm>
#include <iterator>

#include "crypto/Base64.h"
#include "crypto/RandomText.h"
#include "crypto/Sha256.h"
#include "crypto/WrappedBlob.h"
#include "http/JsonText.h"

namespace sandbox {
namespace {

constexpr int kForeignType = 2;
constexpr std::size_t kShortUuid = 8;
constexpr std::size_t kLongUuid = 40;
// Clients read 40,959 bytes of a reply. The large one has this many at least, and fewer than one entry more.
constexpr std::size_t kLargeReply = 40'000;

std::string WrappedText(const std::string& secret, const KeyListOrder& order) {
    return Base64Encoded(WrapSecret(secret, order.temporaryKey));
}

std::string TextWithBadTag(const std::string& secret, const KeyListOrder& order) {
    auto blob = WrapSecret(secret, order.temporaryKey);
    blob.back() = static_cast<char>(static_cast<unsigned char>(blob.back()) ^ 0x01U);
    return Base64Encoded(blob);
}

Json::Value Entry(const UserKey& key, const KeyListOrder& order) {
    return JsonObject({{"keyType", key.type},
                       {"encryptedKey", WrappedText(key.bytes, order)},
                       {"keyUuid", key.uuid},
                       {"keySHA256", WrappedText(Sha256(key.bytes), order)}});
}

// An entry of a type that no client knows. Its digest does not fit, so that a client that takes it for a key fails.
Json::Value ForeignEntry(const Json::Value& type, const KeyListOrder& order) {
    auto entry = Entry({kForeignType, RandomUuid(), RandomBytes(16)}, order);
    entry["keyType"] = type;
    entry["keySHA256"] = WrappedText(Sha256(RandomBytes(16)), order);
    return entry;
}

Json::Value ListOf(std::initializer_list<Json::Value> entries) {
    Json::Value keys(Json::arrayValue);
    for (const auto& entry : entries) {
        keys.append(entry);
    }
    return JsonObject({{"keys", keys}});
}

// Both keys' entries after change(entry, key) was applied to each.
template <typename Change>
Json::Value ChangedList(const KeyListOrder& order, Change change) {
    auto first = Entry(order.keys.type1, order);
    auto second = Entry(order.keys.type3, order);
    change(first, order.keys.type1);
    change(second, order.keys.type3);
    return ListOf({first, second});
}

Json::Value Plain(const KeyListOrder& order) {
    return ListOf({Entry(order.keys.type1, order), Entry(order.keys.type3, order)});
}

Json::Value WrongDigest(const KeyListOrder& order) {
    auto first = Entry(order.keys.type1, order);
    auto second = Entry(order.keys.type3, order);
    first["keySHA256"].swap(second["keySHA256"]);
    return ListOf({first, second});
}

Json::Value BadBlob(const KeyListOrder& order) {
    return ChangedList(order, [&](Json::Value& entry, const UserKey& key) {
        entry["encryptedKey"] = TextWithBadTag(key.bytes, order);
    });
}

Json::Value ForeignTypes(const KeyListOrder& order) {
    return ListOf({ForeignEntry(kForeignType, order), ForeignEntry("1", order), ForeignEntry(1.0, order),
                   ForeignEntry(Json::Value(), order), Entry(order.keys.type1, order), Entry(order.keys.type3, order)});
}

Json::Value LongKeyUnderType1(const KeyListOrder& order) {
    const UserKey longKey{order.keys.type1.type, order.keys.type1.uuid, order.keys.type3.bytes};
    return ListOf({Entry(longKey, order), Entry(order.keys.type3, order)});
}

Json::Value ShortUuid(const KeyListOrder& order) {
    return ChangedList(
        order, [](Json::Value& entry, const UserKey& key) { entry["keyUuid"] = key.uuid.substr(0, kShortUuid); });
}

Json::Value LongUuid(const KeyListOrder& order) {
    return ChangedList(order, [](Json::Value& entry, const UserKey& key) {
        entry["keyUuid"] = key.uuid + key.uuid.substr(0, kLongUuid - key.uuid.size());
    });
}

// A key that cannot be unwrapped, with the digest of one zero byte. A client whose unwrapping leaves one zero byte when
// it fails finds the digest right.
Json::Value OneByteDigest(const KeyListOrder& order) {
    return ChangedList(order, [&](Json::Value& entry, const UserKey& key) {
        entry["encryptedKey"] = TextWithBadTag(key.bytes, order);
        entry["keySHA256"] = WrappedText(Sha256(std::string(1, '\0')), order);
    });
}

// The digest's first byte alone.
Json::Value CutDigest(const KeyListOrder& order) {
    return ChangedList(order, [&](Json::Value& entry, const UserKey& key) {
        entry["keySHA256"] = WrappedText(Sha256(key.bytes).substr(0, 1), order);
    });
}

Json::Value Large(const KeyListOrder& order) {
    const auto plain = Plain(order);
    auto size = JsonLine(plain).size();
    auto list = ListOf({});
    while (size < kLargeReply) {
        const auto entry = ForeignEntry(kForeignType, order);
        size += JsonLine(entry).size() + 1;  // with a comma
        list["keys"].append(entry);
    }
    for (const auto& entry : plain["keys"]) {
        list["keys"].append(entry);
    }
    return list;
}

constexpr KeyListVariant kVariants[] = {
    {kPlainKeyList, Plain},
    {"wrongDigest", WrongDigest},
    {"badBlob", BadBlob},
    {"foreignTypes", ForeignTypes},
    {"longKeyUnderType1", LongKeyUnderType1},
    {"shortUuid", ShortUuid},
    {"longUuid", LongUuid},
    {"oneByteDigest", OneByteDigest},
    {"cutDigest", CutDigest},
    {"large", Large},
};

}  // namespace

const KeyListVariant* FindKeyListVariant(std::string_view name) {
    const auto* found = std::find_if(std::begin(kVariants), std::end(kVariants),
                                     [&](const KeyListVariant& variant) { return variant.name == name; });
    return found != std::end(kVariants) ? found : nullptr;
}

std::string KeyListVariantNames() {
    std::string names;
    for (const auto& variant : kVariants) {
        names += names.empty() ? "" : ", ";
        names += variant.name;
    }
    return names;
}

KeyListChoice::KeyListChoice() {
    Reset();
}

void KeyListChoice::Reset() {
    const std::lock_guard<std::mutex> guard(m_lock);
    for (const auto dataType : kUserKeyDataTypes) {
        m_variants[dataType] = FindKeyListVariant(kPlainKeyList);
    }
}

void KeyListChoice::Choose(std::string_view dataType, const KeyListVariant& variant) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_variants.at(dataType) = &variant;
}

Json::Value KeyListChoice::Make(std::string_view dataType, const KeyListOrder& order) const {
    std::unique_lock<std::mutex> lock(m_lock);
    const auto* variant = m_variants.at(dataType);
    lock.unlock();
    return variant->make(order);
}

}  // namespace sandbox
