#pragma once

#include <string>

// UTF-8, which this machine's calls take, from the platform's wide text and back. Null reads as empty. Of a module's
// path the backslashes become slashes.
std::string NarrowText(const wchar_t* wide);
std::string NarrowPath(const wchar_t* wide);
std::wstring WideText(const std::string& narrow);
