#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace suite {

// Conversions between the platform's UTF-16 and UTF-8. Throw std::length_error beyond 2^29 characters.

// An unpaired surrogate becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view text);

// Invalid bytes become U+FFFD.
std::wstring WideFromUtf8(std::string_view text);

// Nothing when the bytes are not valid UTF-8.
std::optional<std::wstring> WideFromValidUtf8(std::string_view text);

}  // namespace suite
