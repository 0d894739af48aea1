#pragma once

#include <optional>
#include <string>
#include <string_view>

// UTF-16 of UTF-8 text; nothing when the bytes are not valid UTF-8.
std::optional<std::wstring> WideFromUtf8(std::string_view text);

// UTF-8 of UTF-16 text; an unpaired surrogate becomes U+FFFD.
std::string Utf8FromWide(std::wstring_view text);
