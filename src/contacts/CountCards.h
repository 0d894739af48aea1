#pragma once

#include <cstddef>
#include <string_view>

namespace userauth {

// How often "BEGIN" stands in the text. Every occurrence counts, wherever it stands, and the search goes on one
// character behind it, so that "BEGINBEGIN" is one. Kept as it is.
std::size_t CountCards(std::string_view content);

}  // namespace userauth
