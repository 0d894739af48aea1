#pragma once

#include <string>

namespace userauth {

// Replaces every non-overlapping occurrence of a pattern, from left to right, ignoring the case of ASCII letters. An
// empty pattern or subject leaves the subject as it is.
void ReplaceAllIgnoringCase(std::string& subject, const std::string& pattern, const std::string& replacement);

}  // namespace userauth
