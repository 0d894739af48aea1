#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox {

// Decodes the value of a form: ASCII letters, digits and "-_.~" stand for themselves, "+" for a blank, and "%" with two
// capital hexadecimal digits for any other byte. Nothing when the text has anything else in it, or escapes a character
// that needs no escape.
std::optional<std::string> FormDecoded(std::string_view text);

}  // namespace sandbox
