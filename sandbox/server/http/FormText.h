#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox {

// Text that was encoded as a form's value is: ASCII letters, digits and "-_.~" are themselves, "+" is a blank, and "%"
// with two hexadecimal digits, capital ones, any other byte. Nothing when the text has anything else in it, or an
// escape that it does not need.
std::optional<std::string> FormDecoded(std::string_view text);

}  // namespace sandbox
