#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace userauth {

// A server's reply, read without ever throwing. A text that is not JSON reads as a reply without members; a member that
// is missing, null or of another type than the one asked for reads as empty text or 0, and so does every member of a
// reply (or of a member) that is not an object.
class Reply {
public:
    explicit Reply(const std::string& text);

    // An object member; a reply without members when it is none.
    Reply Member(const char* name) const;

    // A string member, in the reply's own bytes (UTF-8 as a rule).
    std::string Text(const char* name) const;

    bool Has(const char* name) const;

    // A string or boolean member, or the fallback when it is missing or of another type.
    std::string TextOr(const char* name, const std::string& fallback) const;
    bool BooleanOr(const char* name, bool fallback) const;

    // An integral number that fits 32 bits; 3600.0 is one.
    std::int32_t Integer(const char* name) const;

    // The member's styled JSON text, of any type: a string keeps its quotes, and a line feed ends it. A member that is
    // not there reads as the text of null.
    std::string StyledText(const char* name) const;

private:
    Reply() = default;

    // Null when there is no such member.
    const Json::Value& Find(const char* name) const;

    Json::Value m_root;
};

}  // namespace userauth
