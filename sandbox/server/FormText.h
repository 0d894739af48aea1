#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sandbox {

// Text that was encoded as a form's value is: "+" is a blank, "%" and two hexadecimal digits a byte, and every other
// character is itself. Nothing when an escape is broken.
std::optional<std::string> FormDecoded(std::string_view text);

}  // namespace sandbox
