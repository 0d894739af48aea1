#include "request/Reply.h"

#include <cstring>
#include <utility>

#include "core/JsonText.h"

namespace userauth {

Reply::Reply(const std::string& text) {
    auto document = std::make_shared<Json::Value>();
    ParseDocument(text, *document);
    m_document = std::move(document);
    m_value = m_document.get();
}

Reply Reply::Of(const Json::Value& root) {
    Reply reply;
    reply.m_value = &root;
    return reply;
}

Reply Reply::Share(const Json::Value& value) const {
    Reply reply;
    reply.m_document = m_document;
    reply.m_value = &value;
    return reply;
}

Reply Reply::Member(const char* name) const {
    return Share(Find(name));
}

bool Reply::Has(const char* name) const {
    return m_value->isObject() && m_value->isMember(name);
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

bool Reply::MayHaveMembers(const char* name) const {
    const Json::Value& member = Find(name);
    return member.isObject() || member.isNull();
}

std::vector<std::string> Reply::MemberNames() const {
    return m_value->isObject() ? m_value->getMemberNames() : std::vector<std::string>();
}

std::vector<Reply> Reply::Elements(const char* name) const {
    const Json::Value& member = Find(name);
    std::vector<Reply> elements;
    if (member.isArray()) {
        elements.reserve(member.size());
        for (const Json::Value& element : member) {
            elements.push_back(Share(element));
        }
    }
    return elements;
}

std::string Reply::StyledText(const char* name) const {
    return WriteStyledText(Find(name));
}

const Json::Value& Reply::Find(const char* name) const {
    const Json::Value* member = m_value->isObject() ? m_value->find(name, name + std::strlen(name)) : nullptr;
    return member == nullptr ? Json::Value::nullSingleton() : *member;
}

}  // namespace userauth
