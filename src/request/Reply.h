#pragma once

#include <json/value.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace userauth {

// A server's reply, of which no text makes reading throw; lack of memory does (std::bad_alloc). A text that is not JSON
// reads as a reply without members. A member that is missing, null or of another type than the one asked for reads as
// empty text or 0, and so does every member of a reply (or of a member) that is not an object. The two Converted forms
// are as lenient as the JSON library.
class Reply {
public:
    explicit Reply(const std::string& text);
    // Of a document that is parsed already, which must outlive the reply and its members: nothing is copied, since a
    // reply of the basic service may be large.
    static Reply Of(const Json::Value& root);

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
    // Whether the member is one.
    bool HasInteger(const char* name) const;

    // As above, of a member that the library would convert: a boolean reads as "true" or "false", a number as its
    // decimal text; a number is cut to its integral part, a boolean reads as 1 or 0 and null as 0. None when it would
    // not.
    std::string ConvertedText(const char* name) const;
    std::optional<std::int32_t> ConvertedInteger(const char* name) const;

    // Whether the member is this number as the library compares: 1.0, "1" and true are not 1.
    bool Equals(const char* name, std::int32_t number) const;

    // Whether its members may be asked for: it is an object or null.
    bool MayHaveMembers(const char* name) const;

    // The names of all members, in ascending order.
    std::vector<std::string> MemberNames() const;
    // The elements of an array member, in order; none when it is no array.
    std::vector<Reply> Elements(const char* name) const;

    // The member's styled JSON text, of any type: a string keeps its quotes, and a line feed ends it. A member that is
    // not there reads as the text of null.
    std::string StyledText(const char* name) const;

private:
    Reply() = default;

    Reply Share(const Json::Value& value) const;
    // Null when there is no such member.
    const Json::Value& Find(const char* name) const;

    std::shared_ptr<const Json::Value> m_document;  // null when somebody else owns it
    const Json::Value* m_value = nullptr;           // never null after construction
};

}  // namespace userauth
