#pragma once

#include <string>

// What a member of the configuration file may hold. Each function returns what is wrong with the UTF-8 text, in words
// that continue "KEY: ", or null when it is acceptable.
const char* CheckBaseUrl(const std::string& url);  // http or https, host, no trailing slash, query or fragment
const char* CheckFolder(const std::string& path);  // absolute, not empty
const char* CheckPlainText(const std::string& text);

// The number of a legacy item: decimal digits of an int that is not negative; -1 for any other text.
int LegacyItemNumber(const std::string& key);
