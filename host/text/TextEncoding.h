#pragma once

#include <string>

namespace host {

// Conversions between the system's UTF-16 and UTF-8. Ill-formed parts become replacement characters.
std::string ToUtf8(const std::wstring& text);
std::wstring ToWide(const std::string& utf8);

// A text from elsewhere that may not be UTF-8, as UTF-8.
std::string WellFormed(const std::string& text);

// ASCII letters in lower case, the rest as it is.
std::string AsciiLower(std::string text);

// Without the blanks and line ends at its end.
std::string Trimmed(std::string text);

}  // namespace host
