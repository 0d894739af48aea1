#include "request/Reply.h"

#include <cstring>

#include "core/JsonText.h"

namespace userauth {

Reply::Reply(const std::string& text) {
    ParseDocument(text, m_root);
}

Reply Reply::Of(const Json::Value& root) {
    Reply reply;
    reply.m_root = root;
    return reply;
}

Reply Reply::Member(const char* name) const {
    return Of(Find(name));
}

bool Reply::Has(const char* name) const {
    return m_root.isObject() && m_root.isMember(name);
}

std::string Reply::Text(const char* name) const {
    return TextOr(name, std::string());
}

std::string Reply::TextOr(const char* name, const std::string& fallback) const {
    const Json::Value& member = Find(name);
    return member.isString() ? member.asString() : fallback;
}

bool Reply::BooleanOr(const char* name, bool fallback) const {
    const Json::Value& member = Find(name);
    return member.isBool() ? member.asBool() : fallback;
}

std::int32_t Reply::Integer(const char* name) const {
    const Json::Value& member = Find(name);
    return member.isInt() ? member.asInt() : 0;
}

bool Reply::HasInteger(const char* name) const {
    return Find(name).isInt();
}

std::string Reply::ConvertedText(const char* name) const {
    const Json::Value& member = Find(name);
    return member.isConvertibleTo(Json::stringValue) ? member.asString() : std::string();
}

std::optional<std::int32_t> Reply::ConvertedInteger(const char* name) const {
    const Json::Value& member = Find(name);
    return member.isConvertibleTo(Json::intValue) ? std::optional<std::int32_t>(member.asInt()) : std::nullopt;
}

bool Reply::Equals(const char* name, std::int32_t number) const {
    return Find(name) == Json::Value(number);
}

std::vector<std::string> Reply::MemberNames() const {
    return m_root.isObject() ? m_root.getMemberNames() : std::vector<std::string>();
}

std::vector<Reply> Reply::Elements(const char* name) const {
    const Json::Value& member = Find(name);
    std::vector<Reply> elements;
    if (member.isArray()) {
        elements.reserve(member.size());
        for (const Json::Value& element : member) {
            elements.push_back(Of(element));
        }
    }
    return elements;
}

std::string Reply::StyledText(const char* name) const {
    return Find(name).toStyledString();
}

const Json::Value& Reply::Find(const char* name) const {
    const Json::Value* member = m_root.isObject() ? m_root.find(name, name + std::strlen(name)) : nullptr;
    return member == nullptr ? Json::Value::nullSingleton() : *member;
}

}  // namespace userauth
