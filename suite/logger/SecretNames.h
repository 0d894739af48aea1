#pragma once

#include <string_view>

#include "TextScan.h"

namespace suite {

// Where the value of a secret begins, found by the secret's name. Texts come unwrapped.
struct NamedValue {
    std::size_t begin = kNone;  // kNone: no secret's name stands at the position, or nothing joins it with a value
    bool quotedName = false;    // JSON and its kind: a value without quotes is a literal
    bool restOfLine = false;    // a header's value
    bool element = false;       // XML: the value ends where the next tag begins
    bool mayBeStatus = false;   // a short number is no secret
};

NamedValue NamedValueAt(std::string_view text, std::size_t at);

// Position behind the name of a secret that stands at the position, else kNone.
std::size_t AfterSecretName(std::string_view text, std::size_t at);

// Position of the value behind "Bearer" and at least one separating character, else kNone.
std::size_t AfterBearer(std::string_view text, std::size_t at);

}  // namespace suite
