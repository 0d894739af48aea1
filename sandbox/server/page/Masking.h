#pragma once

#include <string>
#include <string_view>

namespace sandbox {

// Recorded requests and replies as people may see them. What has a secret's name (token, code, key, cookie, ticket or
// authorization is part of it) and at least 16 characters, is replaced by its length. The rest stays byte by byte.

// Of a head: fields by their names, and parameters of the query by theirs.
std::string MaskedHead(std::string_view head);
// Of JSON: texts by the name of their member, and texts in an object or array of that name; JSON that is cut is read as
// far as it goes. Of anything else: parameters of a form by their names.
std::string MaskedBody(std::string_view body);

}  // namespace sandbox
