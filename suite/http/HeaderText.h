#pragma once

#include <string>
#include <string_view>

namespace suite {

// ASCII comparison without regard to letter case, as header names are compared.
bool SameHeaderName(std::string_view left, std::string_view right);

// Orders names so that those which SameHeaderName takes for one are one.
struct HeaderNameLess {
    bool operator()(const std::string& left, const std::string& right) const;
};

// The text without any of the blanks at its ends.
std::string_view Trimmed(std::string_view text, std::string_view blanks);

}  // namespace suite
