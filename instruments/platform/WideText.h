#pragma once

#include <string>

// UTF-8, which this machine's calls take, from the platform's wide text and back. Null reads as empty.
std::string NarrowText(const wchar_t* wide);
std::wstring WideText(const std::string& narrow);
