#pragma once

#include <string>

// Wide text to UTF-8. Unpaired surrogates become U+FFFD. Throws std::length_error beyond 2^29 characters.
std::string ToUtf8(const std::wstring& text);

// UTF-8 to wide text; invalid bytes become U+FFFD. Throws std::length_error beyond 2^29 characters.
std::wstring FromUtf8(const std::string& text);
