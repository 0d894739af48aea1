#include "request/Reply.h"

#include <cstring>

#include "core/JsonText.h"

namespace userauth {

Reply::Reply(const std::string& text) {
    ParseDocument(text, m_root);
}

Reply Reply::Member(const char* name) const {
    Reply member;
    member.m_root = Find(name);
    return member;
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

std::string Reply::StyledText(const char* name) const {
    return Find(name).toStyledString();
}

const Json::Value& Reply::Find(const char* name) const {
    const Json::Value* member = m_root.isObject() ? m_root.find(name, name + std::strlen(name)) : nullptr;
    return member == nullptr ? Json::Value::nullSingleton() : *member;
}

}  // namespace userauth
