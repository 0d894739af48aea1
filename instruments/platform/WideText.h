#pragma once

#include <filesystem>
#include <string>

// Names and paths in UTF-8, which this machine's calls take, and back: the path class converts (Text.cpp) and throws
// for what is no text.
inline std::string NarrowText(const wchar_t* wide) {
    return std::filesystem::path(wide).string();
}
inline std::wstring WideText(const std::string& narrow) {
    return std::filesystem::path(narrow).wstring();
}
