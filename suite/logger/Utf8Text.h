#pragma once

#include <string>
#include <string_view>

// UTF-8 of UTF-16 text; an unpaired surrogate becomes U+FFFD. Texts beyond 64 Ki units are cut and say so.
std::string Utf8FromWide(std::wstring_view text);
