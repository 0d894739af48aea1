#pragma once

#include <string>

namespace userauth {

// The two code pages in use (the sign-in's application id, all digits, takes a third). Which one a call site takes is
// part of its contract with the other side.
inline constexpr unsigned kAnsiCodePage = 0;
inline constexpr unsigned kUtf8CodePage = 65001;

// Convert the whole text, zero bytes included. False with the output unchanged when the input is empty or cannot be
// converted.
bool MultiByteToWide(const std::string& text, std::wstring& wide, unsigned codePage);
bool WideToMultiByte(const std::wstring& wide, std::string& text, unsigned codePage);

// The same, empty on failure.
std::wstring MultiByteToWide(const std::string& text, unsigned codePage);
std::string WideToMultiByte(const std::wstring& wide, unsigned codePage);

// Encodes a query value as application/x-www-form-urlencoded does, over the text's bytes in the system's ANSI code
// page: ASCII letters, digits and "-_.~" stay, a blank becomes "+", any other byte "%" and two upper-case hexadecimal
// digits.
std::wstring UrlEncode(const std::wstring& text);
std::string UrlEncodeToBytes(const std::wstring& text);

}  // namespace userauth
