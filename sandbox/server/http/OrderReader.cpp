#include "http/OrderReader.h"

#include "http/Exchange.h"

namespace sandbox {
namespace {

void Require(bool good, const std::string& name, const char* otherwise) {
    if (!good) {
        throw Refusal(Wrong::kBody, name + otherwise);
    }
}

constexpr const char* kNotFitting = " has the wrong type or is out of range";

}  // namespace

std::optional<unsigned> OrderReader::Number(const char* name, unsigned smallest, unsigned largest) {
    const auto* value = Find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    Require(value->isUInt() && value->asUInt() >= smallest && value->asUInt() <= largest, name, kNotFitting);
    return value->asUInt();
}

std::optional<std::string> OrderReader::Text(const char* name) {
    const auto* value = Find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    Require(value->isString(), name, kNotFitting);
    return value->asString();
}

std::optional<bool> OrderReader::Switch(const char* name) {
    const auto* value = Find(name);
    if (value == nullptr) {
        return std::nullopt;
    }
    Require(value->isBool(), name, kNotFitting);
    return value->asBool();
}

std::optional<Json::Value> OrderReader::Anything(const char* name) {
    const auto* value = Find(name);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

void OrderReader::RefuseOthers() const {
    for (const auto& name : m_order.getMemberNames()) {
        Require(m_known.count(name) != 0, name, " is not a member of this order");
    }
}

const Json::Value* OrderReader::Find(const std::string& name) {
    m_known.insert(name);
    return m_order.find(name.data(), name.data() + name.size());
}

}  // namespace sandbox
