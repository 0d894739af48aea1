#pragma once

#include <string>

namespace suite {

// What a member of the configuration may hold. Each function returns what is wrong with the UTF-8 text, in words
// that continue "KEY: ", or null when it is acceptable.
const char* CheckBaseUrl(const std::string& url);
const char* CheckFolder(const std::string& path);  // absolute, not empty
const char* CheckPlainText(const std::string& text);

// The number of a legacy item: decimal digits of an int that is not negative; -1 for any other text.
int LegacyItemNumber(const std::string& key);

}  // namespace suite
