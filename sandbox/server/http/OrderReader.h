#pragma once

#include <optional>
#include <set>
#include <string>

#include <json/value.h>

namespace sandbox {

// Reads an order, the JSON object that a control endpoint is sent, member by member. Nothing is returned for a member
// that is missing; one of another type or out of range is refused, as is one that nobody asked for. Throws Refusal.
class OrderReader {
public:
    // order must outlive the reader.
    explicit OrderReader(const Json::Value& order) : m_order(order) {}

    std::optional<unsigned> Number(const char* name, unsigned smallest, unsigned largest);
    std::optional<std::string> Text(const char* name);
    std::optional<bool> Switch(const char* name);
    std::optional<Json::Value> Anything(const char* name);

    // After the last member was read.
    void RefuseOthers() const;

private:
    // Null when it is missing.
    const Json::Value* Find(const std::string& name);

    const Json::Value& m_order;
    std::set<std::string> m_known;
};

}  // namespace sandbox
